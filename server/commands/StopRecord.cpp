#include "server/commands/StopRecord.h"

#include "core/CortexCore.h"
#include "server/RecordFileSet.h"
#include "services/GlobalConsoleWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

StopRecord::StopRecord(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool StopRecord::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    if (!node->isRecording()) {
        setError(response, notRecordingError(node));
        return false;
    }
    const QString reason = QStringLiteral("STOP ON WEB COMMAND");
    kxDebug() << reason;
    node->addLogItem(reason, QStringLiteral("StopReason"));
    const QList<QString> paths = node->stopRecord();
    const QString stem = RecordFileSet::stemOf(paths.value(0));

    QJsonArray files;
    QStringList errors;
    for (const QString& path : paths) {
        const QString name = QFileInfo(path).fileName();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            errors.append(QStringLiteral("Failed to open ") + name + QStringLiteral(" file!"));
            continue;
        }
        const QByteArray data = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            errors.append(name + QStringLiteral(" could not be read. "));
            continue;
        }
        files.append(QJsonObject { { QStringLiteral("name"), name },
                                   { QStringLiteral("type"), RecordFileSet::typeOf(stem, path) },
                                   { QStringLiteral("data"), QString::fromLatin1(data.toBase64()) } });
    }
    response.insert(QStringLiteral("files"), files);
    response.insert(QStringLiteral("baseName"), RecordFileSet::baseNameOf(stem));
    if (!errors.isEmpty()) {
        setError(response, errors.join(QLatin1Char(' ')));
        return false;
    }
    return true;
}

QMap<QString, QString> StopRecord::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("files"),
                          tr("An array of recorded files [{'type': 'edf', 'data': 'BINARY_IN_BASE64'}]") },
                        { QStringLiteral("baseName"), tr("File basename") } });
}
