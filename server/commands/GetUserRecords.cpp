#include "server/commands/GetUserRecords.h"

#include "server/DataServerContext.h"
#include "server/RecordFileSet.h"
#include "server/RecordsFolder.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

namespace {
const QStringList LogFields = { QStringLiteral("GUID"), QStringLiteral("User"), QStringLiteral("Date"),
                                QStringLiteral("Timestamp"), QStringLiteral("Device") };
const QString FileTimeFormat = QStringLiteral("yyyy.MM.dd-hh.mm.ss");
}

GetUserRecords::GetUserRecords(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

QMap<QString, QString> GetUserRecords::readLog(const QString& path, const QStringList& keys)
{
    QMap<QString, QString> found;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return found;
    while (!file.atEnd() && found.size() < keys.size()) {
        const QString line = QString::fromUtf8(file.readLine()).remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
        const QString key = line.section(QLatin1Char('\t'), 1, 1);
        if (keys.contains(key) && !found.contains(key))
            found.insert(key, line.section(QLatin1Char('\t'), 2));
    }
    return found;
}

bool GetUserRecords::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const RecordsFolder folder(context() ? context()->getRecordsFolder() : QString());
    QJsonArray records;
    for (const QString& record : RecordFileSet::recordsIn(folder)) {
        const QString name = RecordFileSet::baseNameOf(record);
        QJsonObject entry { { QStringLiteral("path"), record }, { QStringLiteral("name"), name } };
        // Without a log, a name made of the start time still tells when.
        const QDateTime named = QDateTime::fromString(name, FileTimeFormat);
        if (named.isValid()) {
            entry.insert(QStringLiteral("Date"), named.toString(Qt::ISODate));
            entry.insert(QStringLiteral("Timestamp"), QString::number(named.toMSecsSinceEpoch()));
        }
        QString log;
        QString error;
        const QString logPath = RecordFileSet::stemOf(record) + QStringLiteral(".log");
        if (folder.resolveExisting(logPath, log, error)) {
            const QMap<QString, QString> fields = readLog(log, LogFields);
            for (auto it = fields.cbegin(); it != fields.cend(); ++it)
                entry.insert(it.key(), it.value());
        }
        records.append(entry);
    }
    response.insert(QStringLiteral("files"), records);
    return true;
}

QString GetUserRecords::getDescription()
{
    return tr("Returns user's records");
}

QMap<QString, QString> GetUserRecords::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("files"), tr("Array of records files") } });
}
