#include "server/commands/AddFileToRecord.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "server/RecordFileSet.h"
#include "server/RecordsFolder.h"

#include <QFileInfo>

AddFileToRecord::AddFileToRecord(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
    const int count = context ? context->getNodeCount() : 0;
    for (int i = 0; i < count; ++i)
        followRecords(context->getNode(i));
}

void AddFileToRecord::followRecords(CortexCore* node)
{
    if (!node)
        return;
    connect(node, &CortexCore::recordStarted, this, [this, node](QString path) { m_recordPaths.insert(node, path); });
    connect(node, &CortexCore::recordStopped, this, [this, node] { m_recordPaths.remove(node); });
    connect(node, &QObject::destroyed, this, [this, node] { m_recordPaths.remove(node); });
}

QString AddFileToRecord::recordStem(CortexCore* node) const
{
    const QString path = m_recordPaths.value(node, node->lastRecordFileName());
    return path.isEmpty() ? QString() : RecordFileSet::stemOf(path);
}

bool AddFileToRecord::isPlainExtension(const QString& extension)
{
    return !extension.isEmpty() && !extension.contains(QLatin1Char('/')) && !extension.contains(QLatin1Char('\\'))
        && !extension.contains(QStringLiteral(".."));
}

bool AddFileToRecord::processCommandWithBody(Referrer referrer, QJsonObject& response,
                                             QMap<QString, QString>& args, QByteArray& body)
{
    m_body = &body;
    const bool result = BaseCortexCoreNodeCommand::processCommand(referrer, response, args);
    m_body = nullptr;
    return result;
}

bool AddFileToRecord::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                     QMap<QString, QString>& args)
{
    return addFile(node, response, args, m_body);
}

bool AddFileToRecord::addFile(CortexCore* node, QJsonObject& response, QMap<QString, QString>& args,
                              const QByteArray* body)
{
    QString extensionKey = QStringLiteral("extension");
    QString bodyKey = QStringLiteral("body");
    QString formatKey = QStringLiteral("format");
    QString extension = argumentCaseInsensitive(args, extensionKey, QString()).trimmed();
    while (extension.startsWith(QLatin1Char('.')))
        extension.remove(0, 1);
    if (extension.isEmpty()) {
        setError(response, QStringLiteral("Provide file 'extension' argument"));
        return false;
    }
    if (!isPlainExtension(extension)) {
        setError(response, QStringLiteral("The extension may not contain '/', '\\' or '..'"));
        return false;
    }
    QByteArray content;
    if (body && !body->isEmpty()) {
        content = *body;
    } else {
        const QString text = argumentCaseInsensitive(args, bodyKey, QString());
        if (text.isEmpty()) {
            setError(response, QStringLiteral("Provide file body in 'body' argument"));
            return false;
        }
        content = text.toUtf8();
    }
    if (argumentCaseInsensitive(args, formatKey, QString()).compare(QLatin1String("base64"), Qt::CaseInsensitive)
        == 0) {
        auto decoded = QByteArray::fromBase64Encoding(content.trimmed(), QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            setError(response, QStringLiteral("The file body is not valid base64"));
            return false;
        }
        content = *decoded;
    }

    const QString stem = node->isRecording() ? recordStem(node) : QString();
    if (stem.isEmpty()) {
        setError(response, QStringLiteral("Record has not been started"));
        return false;
    }
    // Checked here as well as in the engine: a link planted in the folder must not redirect
    // the write elsewhere.
    const QString path = stem + QLatin1Char('.') + extension;
    QString target;
    QString error;
    const RecordsFolder folder(context()->getRecordsFolder());
    if (!folder.resolveForWriting(path, target, error)) {
        setError(response, error);
        return false;
    }
    if (!node->addFileToRecord(QFileInfo(path).fileName(), content)) {
        setError(response, QStringLiteral("The file could not be written"));
        return false;
    }
    return true;
}

QMap<QString, QString> AddFileToRecord::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("extension"), tr("Extension of the file, added to the record's name") },
                        { QStringLiteral("body"), tr("File content, when the request has no body") },
                        { QStringLiteral("format"), tr("[Optional] 'base64' if the content is base64 text") } });
}
