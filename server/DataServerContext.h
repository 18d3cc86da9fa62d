#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

class CortexCore;
class OrvexSettings;
class UserAccountStore;
class VirtualDevicesSettings;

// What the data server needs of the application: its engine nodes, its settings and a few
// application-wide actions. The application model implements it; tests hand the server a
// small fake with real engines and temporary settings.
class DataServerContext : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual int getNodeCount() const = 0;
    // nullptr outside 0..getNodeCount()-1.
    virtual CortexCore* getNode(int index) const = 0;

    virtual OrvexSettings* getSettings() const = 0;
    virtual VirtualDevicesSettings* getVirtualDevicesSettings() const = 0;
    // The folder recordings go to; every file command stays inside it.
    virtual QString getRecordsFolder() const = 0;
    virtual UserAccountStore* getUserAccounts() const = 0;

    // The feedback screens the application offers and the one it shows.
    virtual QStringList getFeedbackScreens() const = 0;
    virtual QString getCurrentFeedbackScreen() const = 0;
    virtual bool setCurrentFeedbackScreen(const QString& screen) = 0;

    // The HTTP port the command interface listens on; 0 when it is not listening.
    virtual int getApiPort() const { return 0; }

    virtual void closeApplication() = 0;
    // Hands an http(s) address to the desktop; false when it was not opened.
    virtual bool openLink(const QUrl& url) = 0;

Q_SIGNALS:
    // The set of control values (indices, visible custom algorithms) changed.
    void controlOptionsChanged();
    void currentFeedbackScreenChanged(QString screen);
};
