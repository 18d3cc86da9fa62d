#include "server/commands/StartRecord.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "server/RecordFileSet.h"
#include "services/GlobalConsoleWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

StartRecord::StartRecord(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

bool StartRecord::isFlagSet(QMap<QString, QString>& args, const QString& name)
{
    QString key = name;
    const QString unset = QStringLiteral("\x01");
    const QString value = argumentCaseInsensitive(args, key, unset).trimmed().toLower();
    return value != unset && value != QLatin1String("0") && value != QLatin1String("false")
        && value != QLatin1String("no") && value != QLatin1String("off");
}

// A relative path is taken in the records folder, an absolute one as it is; the engine
// creates missing folders. The files of an existing recording are never overwritten.
bool StartRecord::recordPath(const QString& requested, QString& path, QJsonObject& response)
{
    path.clear();
    if (requested.isEmpty())
        return true;
    const QString stem = QDir::cleanPath(
        QDir(context()->getRecordsFolder()).absoluteFilePath(RecordFileSet::stemOf(requested)));
    for (const char* suffix : { ".edf", ".raw.bdf", ".oxd", ".log" }) {
        const QFileInfo file(stem + QLatin1String(suffix));
        if (file.exists() || file.isSymLink()) {
            setError(response, QStringLiteral("Record '%1.edf' already exists").arg(stem));
            return false;
        }
    }
    path = stem + QStringLiteral(".edf");
    return true;
}

bool StartRecord::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString key = QStringLiteral("path");
    QString path;
    if (!recordPath(argumentCaseInsensitive(args, key, QString()).trimmed(), path, response))
        return false;
    if (isFlagSet(args, QStringLiteral("noinvoke"))) {
        QPointer<CortexCore> target(node);
        QTimer::singleShot(0, node, [target, path] {
            if (target && !target->startRecord(path))
                kxDebug() << QStringLiteral("Recording not started: ") + target->lastRecordError();
        });
        return true;
    }
    if (!node->startRecord(path)) {
        setError(response, QStringLiteral("Record could not be started: ") + node->lastRecordError());
        return false;
    }
    return true;
}

QString StartRecord::getDescription()
{
    return tr("Starts data recording");
}

QMap<QString, QString> StartRecord::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("path"), tr("Filepath of the main .edf file") } });
}
