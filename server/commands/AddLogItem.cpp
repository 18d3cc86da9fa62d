#include "server/commands/AddLogItem.h"

#include "core/CortexCore.h"

AddLogItem::AddLogItem(DataServerContext* context, QObject* parent)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent)
{
}

namespace {
QString oneLine(QString text)
{
    return text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
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
    if (!node->isRecording()) {
        setError(response, QStringLiteral("Record has not been started"));
        return false;
    }
    // The type becomes the log key. One item is one tab-separated line, so the key may hold
    // no tab and neither part a line break.
    QString type = oneLine(argumentCaseInsensitive(args, typeKey, QString()));
    type.replace(QLatin1Char('\t'), QLatin1Char(' '));
    if (type.trimmed().isEmpty())
        type = QStringLiteral("Message");
    if (!node->addLogItem(oneLine(text), type.trimmed())) {
        setError(response, QStringLiteral("The log item could not be written"));
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
