#include "server/commands/ExistingFiles.h"

#include "server/DataServerContext.h"
#include "server/RecordsFolder.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>

ExistingFiles::ExistingFiles(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool ExistingFiles::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    const RecordsFolder folder(context() ? context()->getRecordsFolder() : QString());
    QJsonArray files;
    for (const QString& file : folder.listFiles()) {
        const QFileInfo info(folder.absolutePath(file));
        files.append(QJsonObject { { QStringLiteral("path"), file },
                                   { QStringLiteral("size"), double(info.size()) },
                                   { QStringLiteral("modified"), info.lastModified().toString(Qt::ISODateWithMs) } });
    }
    response.insert(QStringLiteral("files"), files);
    return true;
}

QString ExistingFiles::getDescription()
{
    return tr("Lists every file present in the records folder (recordings and the files beside them)");
}

QMap<QString, QString> ExistingFiles::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("files"), tr("Array of {\"path\" (relative to the records folder), "
                                                      "\"size\" (bytes), \"modified\"}") } });
}
