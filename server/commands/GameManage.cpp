#include "server/commands/GameManage.h"

#include "server/DataServerContext.h"

#include <QJsonArray>

GameManage::GameManage(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool GameManage::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    if (!context()) {
        setError(response, QStringLiteral("No feedback screens"));
        return false;
    }
    QString screenName = QStringLiteral("screen");
    const QString screen = argumentCaseInsensitive(args, screenName, QString());
    if (screen.isNull()) {
        response.insert(QStringLiteral("screens"), QJsonArray::fromStringList(context()->getFeedbackScreens()));
    } else if (!context()->setCurrentFeedbackScreen(screen)) {
        setError(response, QStringLiteral("Unknown screen '") + screen + QLatin1Char('\''));
        return false;
    }
    response.insert(QStringLiteral("current"), context()->getCurrentFeedbackScreen());
    return true;
}

QMap<QString, QString> GameManage::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("screen"), tr("[Optional] Feedback screen to show") } });
}

QMap<QString, QString> GameManage::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("screens"), tr("Feedback screens (without 'screen')") },
                        { QStringLiteral("current"), tr("The feedback screen shown") } });
}
