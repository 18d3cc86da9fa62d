#include "app/OSHelper.h"

#include "services/GlobalConsole.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

namespace {
const QString ScreenSaverService = QStringLiteral("org.freedesktop.ScreenSaver");
// Desktops publish the interface at one or both of these paths.
const QStringList ScreenSaverPaths = { QStringLiteral("/org/freedesktop/ScreenSaver"),
                                       QStringLiteral("/ScreenSaver") };

struct Inhibition
{
    bool active = false;
    uint cookie = 0;
    QString path;
};
Inhibition s_inhibition;

QString applicationName()
{
    const QString name = QCoreApplication::applicationName();
    return name.isEmpty() ? QStringLiteral("OrvexPro") : name;
}

QDBusMessage callScreenSaver(const QString& path, const QString& method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(ScreenSaverService, path, ScreenSaverService, method);
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call, QDBus::Block, OSHelper::DesktopCallTimeoutMs);
}

bool isFinal(const QDBusMessage& answer)
{
    // Another path only helps when the service exists but lacks this object.
    return answer.type() == QDBusMessage::ReplyMessage
        || (answer.errorName() != QLatin1String("org.freedesktop.DBus.Error.UnknownObject")
            && answer.errorName() != QLatin1String("org.freedesktop.DBus.Error.UnknownMethod"));
}
} // namespace

bool OSHelper::keepScreenAwake(bool keep)
{
    return keep ? inhibit() : release();
}

bool OSHelper::inhibit()
{
    if (s_inhibition.active)
        return true;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        GlobalConsole::writeLine(QStringLiteral("Cannot keep the screen awake: no session D-Bus (%1).")
                                     .arg(bus.lastError().message()));
        return false;
    }
    QDBusMessage answer;
    QString path;
    for (const QString& candidate : ScreenSaverPaths) {
        path = candidate;
        answer = callScreenSaver(path, QStringLiteral("Inhibit"),
                                 { applicationName(), QStringLiteral("Showing live EEG signals") });
        if (isFinal(answer))
            break;
    }
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().size() != 1) {
        GlobalConsole::writeLine(QStringLiteral("Cannot keep the screen awake: %1 (%2).")
                                     .arg(answer.errorName(), answer.errorMessage()));
        return false;
    }
    s_inhibition = { true, answer.arguments().first().toUInt(), path };
    return true;
}

bool OSHelper::release()
{
    if (!s_inhibition.active)
        return true;
    const Inhibition inhibition = s_inhibition;
    s_inhibition = Inhibition();
    const QDBusMessage answer = callScreenSaver(inhibition.path, QStringLiteral("UnInhibit"), { inhibition.cookie });
    if (answer.type() == QDBusMessage::ReplyMessage)
        return true;
    GlobalConsole::writeLine(QStringLiteral("Cannot release the screen: %1 (%2).")
                                 .arg(answer.errorName(), answer.errorMessage()));
    return false;
}
