#include "server/commands/ControlOptions.h"

#include "server/commands/ControlValues.h"

ControlOptions::ControlOptions(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool ControlOptions::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    response.insert(QStringLiteral("controls"), ControlValues::options(context()));
    return true;
}

QString ControlOptions::getDescription()
{
    return tr("Provides information about all proportional and discrete controls available. These values can be "
              "fetched by the 'bci' command");
}

QMap<QString, QString> ControlOptions::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("controls"),
                          tr("An array of {\"name\":\"CONTROLNAME\", \"type\":\"proportional\"/\"discrete\"}") } });
}
