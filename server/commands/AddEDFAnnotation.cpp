#include "server/commands/AddEDFAnnotation.h"

#include "core/CortexCore.h"

AddEDFAnnotation::AddEDFAnnotation(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

namespace {
// The first of `names` given decides; absent gives `fallback`, a non-number sets `error`.
int millisecondsArgument(QMap<QString, QString>& args, const QStringList& names, int fallback, QString& error)
{
    for (QString name : names) {
        const QString text = HTWSCommand::argumentCaseInsensitive(args, name, QString()).trimmed();
        if (text.isEmpty())
            continue;
        bool isNumber = false;
        const int value = text.toInt(&isNumber, 10);
        if (!isNumber)
            error = QStringLiteral("Could not parse '%1' as milliseconds").arg(text);
        return isNumber ? value : fallback;
    }
    return fallback;
}
}

bool AddEDFAnnotation::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                      QMap<QString, QString>& args)
{
    QString key = QStringLiteral("text");
    const QString text = argumentCaseInsensitive(args, key, QString());
    if (text.isEmpty()) {
        setError(response, QStringLiteral("Provide 'text' parameter"));
        return false;
    }
    QString error;
    // A missing position means "now" on the recording's clock.
    const int position = millisecondsArgument(args, { QStringLiteral("pos"), QStringLiteral("pos_ms") }, -1, error);
    const int duration = millisecondsArgument(args, { QStringLiteral("duration"), QStringLiteral("dur") }, 0, error);
    if (!error.isEmpty()) {
        setError(response, error);
        return false;
    }
    node->addAnnotation(text, position, duration);
    return true;
}

QString AddEDFAnnotation::getDescription()
{
    return tr("Adding annotation to EDF");
}

QMap<QString, QString> AddEDFAnnotation::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("pos"), tr("Position in msecs") },
                        { QStringLiteral("duration"), tr("Duration in msecs") },
                        { QStringLiteral("text"), tr("Text for annotation") } });
}
