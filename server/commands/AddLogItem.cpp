#include "server/commands/AddLogItem.h"

#include "core/CortexCore.h"

AddLogItem::AddLogItem(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

namespace {
// One item is one tab-separated line: neither the key nor the value may hold a tab or a line
// break, or readers of the log would split it wrongly.
QString oneLine(QString text)
{
    for (const QLatin1Char separator : { QLatin1Char('\r'), QLatin1Char('\n'), QLatin1Char('\t') })
        text.replace(separator, QLatin1Char(' '));
    return text;
}
}

bool AddLogItem::processCommand(CortexCore* node, Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    QString textKey = QStringLiteral("text");
    QString typeKey = QStringLiteral("type");
    const QString text = argumentCaseInsensitive(args, textKey, QString());
    if (text.isEmpty()) {
        setError(response, QStringLiteral("Provide 'text' parameter"));
        return false;
    }
    // The type becomes the log key. Without a recording the engine decides: an "Annotation"
    // waits for a recording started shortly after, anything else is refused.
    QString type = oneLine(argumentCaseInsensitive(args, typeKey, QString()));
    if (type.trimmed().isEmpty())
        type = QStringLiteral("Message");
    if (!node->addLogItem(oneLine(text), type.trimmed())) {
        setError(response, node->isRecording() ? QStringLiteral("The log item could not be written")
                                               : QStringLiteral("Record has not been started"));
        return false;
    }
    return true;
}

QString AddLogItem::getDescription()
{
    return tr("Log the text");
}

QMap<QString, QString> AddLogItem::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("text"), tr("Message to log") },
                        { QStringLiteral("type"), tr("[Optional] Type of message") } });
}
