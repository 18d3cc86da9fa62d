#include "server/BaseSetFilterCommand.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"

BaseSetFilterCommand::BaseSetFilterCommand(DataServerContext* context, QObject* parent,
                                           HTWSCommandCategory* category)
    : BaseCortexCoreNodeCommand(0, context, parent, category)
{
}

QMap<QString, QString> BaseSetFilterCommand::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("value"), tr("Floating point value of filter (0..100 Hz)") } });
}

bool BaseSetFilterCommand::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                          QMap<QString, QString>& args)
{
    const QString text = args.value(QStringLiteral("value"));
    bool ok = false;
    const float value = text.toFloat(&ok);
    if (!ok) {
        setError(response, QStringLiteral("Could not parse '") + text + QStringLiteral("' as float"));
        return false;
    }
    // Written so that "nan" (which parses) is refused as well.
    if (!(value >= 0 && value <= 100)) {
        setError(response, QStringLiteral("Filter value should be between 0 (off) and 100 Hz, '") + text
                               + QStringLiteral("' given"));
        return false;
    }
    float hpf = 0, lpf = 0, bsf = 0, bsf2 = 0;
    node->getFilters(hpf, lpf, bsf, bsf2);
    setFilterValue(hpf, lpf, bsf, bsf2, value);
    node->setFilters(hpf, lpf, bsf, bsf2);
    if (OrvexSettings* settings = context()->getSettings())
        settings->setProperty(settingsKey().toLatin1().constData(), value);
    return true;
}
