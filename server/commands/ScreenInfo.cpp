#include "server/commands/ScreenInfo.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QRect>
#include <QScreen>

namespace {
constexpr double MillimetresPerInch = 25.4;

QJsonObject describe(const QScreen* screen)
{
    const QRect geometry = screen->geometry();
    const double dpi = screen->physicalDotsPerInch();
    QJsonObject info;
    info.insert(QStringLiteral("width"), geometry.width());
    info.insert(QStringLiteral("height"), geometry.height());
    info.insert(QStringLiteral("x"), geometry.x());
    info.insert(QStringLiteral("y"), geometry.y());
    info.insert(QStringLiteral("pixelRatio"), screen->devicePixelRatio());
    info.insert(QStringLiteral("dpi"), dpi);
    info.insert(QStringLiteral("dpmm"), dpi / MillimetresPerInch);
    return info;
}
}

ScreenInfo::ScreenInfo(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

// A headless run has no screens: without a GUI application the list stays empty.
bool ScreenInfo::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>&)
{
    QJsonArray screens;
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        for (const QScreen* screen : QGuiApplication::screens())
            screens.append(describe(screen));
    }
    response.insert(QStringLiteral("screens"), screens);
    return true;
}

QMap<QString, QString> ScreenInfo::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("screens"), tr("Array of screens infos") } });
}
