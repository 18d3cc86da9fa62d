#include "server/commands/Records.h"

#include "server/DataServerContext.h"
#include "server/RecordFileSet.h"
#include "server/RecordsFolder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

Records::Records(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool Records::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString actionKey = QStringLiteral("action");
    QString pathKey = QStringLiteral("path");
    QString extensionsKey = QStringLiteral("extensions");
    const QString action = argumentCaseInsensitive(args, actionKey, QStringLiteral("files")).trimmed().toLower();
    const QString path = argumentCaseInsensitive(args, pathKey, QString()).trimmed();
    const RecordsFolder folder(context() ? context()->getRecordsFolder() : QString());

    if (action.isEmpty() || action == QLatin1String("files"))
        return listRecords(folder, response);
    const bool known = action == QLatin1String("get") || action == QLatin1String("remove")
        || action == QLatin1String("delete") || action == QLatin1String("set");
    if (!known) {
        setError(response, QStringLiteral("Unknown action '%1'").arg(action));
        return false;
    }
    if (path.isEmpty()) {
        setError(response, QStringLiteral("Provide 'path' argument"));
        return false;
    }
    if (action == QLatin1String("get"))
        return getRecord(folder, path, argumentCaseInsensitive(args, extensionsKey, QString()), response);
    if (action == QLatin1String("set"))
        return setFile(folder, path, args, response);
    return removeFile(folder, path, response);
}

bool Records::listRecords(const RecordsFolder& folder, QJsonObject& response)
{
    QJsonArray records;
    for (const QString& record : RecordFileSet::recordsIn(folder)) {
        const QString stem = RecordFileSet::stemOf(folder.absolutePath(record));
        const QFileInfo edf(stem + record.right(4));
        QJsonArray names;
        for (const QString& file : RecordFileSet::filesInside(folder, stem))
            names.append(QFileInfo(file).fileName());
        records.append(QJsonObject { { QStringLiteral("path"), record },
                                     { QStringLiteral("name"), RecordFileSet::baseNameOf(record) },
                                     { QStringLiteral("size"), double(edf.size()) },
                                     { QStringLiteral("modified"),
                                       edf.lastModified().toString(Qt::ISODateWithMs) },
                                     { QStringLiteral("files"), names } });
    }
    response.insert(QStringLiteral("files"), records);
    return true;
}

bool Records::getRecord(const RecordsFolder& folder, const QString& path, const QString& extensions,
                        QJsonObject& response)
{
    const QString absolute = folder.absolutePath(path);
    if (absolute.isEmpty()) {
        setError(response, RecordsFolder::outsideErrorText());
        return false;
    }
    const QString stem = RecordFileSet::stemOf(absolute);
    int refused = 0;
    const QStringList files = RecordFileSet::filesInside(folder, stem, &refused);
    if (files.isEmpty()) {
        setError(response, refused > 0 ? RecordsFolder::outsideErrorText()
                                       : QStringLiteral("Record '%1' not found").arg(path));
        return false;
    }
    QJsonArray result;
    for (const QString& file : files) {
        const QString type = RecordFileSet::typeOf(stem, file);
        if (!RecordFileSet::typeMatches(type, extensions))
            continue;
        QFile input(file);
        const QString name = QFileInfo(file).fileName();
        if (!input.open(QIODevice::ReadOnly)) {
            setError(response, QStringLiteral("Failed to open ") + name + QStringLiteral(" file!"));
            return false;
        }
        const QByteArray data = input.readAll();
        result.append(QJsonObject { { QStringLiteral("name"), name },
                                    { QStringLiteral("type"), type },
                                    { QStringLiteral("size"), double(data.size()) },
                                    { QStringLiteral("data"), QString::fromLatin1(data.toBase64()) } });
    }
    response.insert(QStringLiteral("files"), result);
    return true;
}

bool Records::removeFile(const RecordsFolder& folder, const QString& path, QJsonObject& response)
{
    QString resolved;
    QString error;
    if (!folder.resolveExisting(path, resolved, error)) {
        setError(response, error);
        return false;
    }
    if (!QFile::remove(resolved)) {
        setError(response, QStringLiteral("File '%1' could not be removed").arg(path));
        return false;
    }
    response.insert(QStringLiteral("response"), QStringLiteral("File removed"));
    return true;
}

bool Records::setFile(const RecordsFolder& folder, const QString& path, QMap<QString, QString>& args,
                      QJsonObject& response)
{
    QString dataKey = QStringLiteral("data");
    QString data64Key = QStringLiteral("data64");
    const QString missing = QStringLiteral("\x01");
    const QString text = argumentCaseInsensitive(args, dataKey, missing);
    const QString base64 = argumentCaseInsensitive(args, data64Key, missing);
    if (text == missing && base64 == missing) {
        setError(response, QStringLiteral("Provide 'data' or 'data64'"));
        return false;
    }
    QByteArray content = text.toUtf8();
    if (text == missing) {
        auto decoded = QByteArray::fromBase64Encoding(base64.trimmed().toLatin1(),
                                                      QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            setError(response, QStringLiteral("'data64' is not valid base64"));
            return false;
        }
        content = *decoded;
    }
    QString resolved;
    QString error;
    if (!folder.resolveForWriting(path, resolved, error)) {
        setError(response, error);
        return false;
    }
    QDir().mkpath(QFileInfo(resolved).absolutePath());
    QFile output(resolved);
    if (!output.open(QIODevice::WriteOnly | QIODevice::Truncate) || output.write(content) != content.size()) {
        setError(response, QStringLiteral("File '%1' could not be written").arg(path));
        return false;
    }
    response.insert(QStringLiteral("response"), QStringLiteral("File written"));
    return true;
}

QString Records::getDescription()
{
    return tr("Returns records");
}

QMap<QString, QString> Records::getArgumentDescriptions()
{
    return createArgs(
        { { QStringLiteral("action"), tr("[Optional] Can be 'files' (default), 'get', 'remove'/'delete', 'set'") },
          { QStringLiteral("path"), tr("[Optional] Used if action is 'get', 'set' or 'delete'") },
          { QStringLiteral("extensions"), tr("[Optional] Filters output of files if 'action=get'") } });
}

QMap<QString, QString> Records::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("files"), tr("List of records files ('action=files') or array of files in "
                                                      "base64 encoding") } });
}
