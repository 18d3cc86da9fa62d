#include "server/commands/Close.h"

#include "server/DataServerContext.h"

Close::Close(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool Close::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    if (!context()) {
        setError(response, QStringLiteral("No application to close"));
        return false;
    }
    context()->closeApplication();
    return true;
}

QString Close::getDescription()
{
    return tr("Closes the applcation");
}
