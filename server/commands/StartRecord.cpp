#include "server/commands/StartRecord.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "server/RecordFileSet.h"
#include "server/RecordsFolder.h"
#include "services/GlobalConsoleWriter.h"

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

// A requested path may only name a file inside the records folder; the engine creates
// missing folders, so the check resolves the nearest existing one.
bool StartRecord::recordPath(const QString& requested, QString& path, QJsonObject& response)
{
    path.clear();
    if (requested.isEmpty())
        return true;
    QString error;
    const RecordsFolder folder(context()->getRecordsFolder());
    if (!folder.resolveForWriting(RecordFileSet::stemOf(requested) + QStringLiteral(".edf"), path, error)) {
        setError(response, error);
        return false;
    }
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
