#pragma once

#include "server/DataServerContext.h"

#include <QHash>
#include <QJsonObject>
#include <QList>

class CortexCore;
class KxSettings;
class OrvexDataServer;
class UiModel;

// The application model: owns the settings, the engine nodes and the data server, and keeps
// the engines in step with the settings. Node 0 is the one the window and the command line
// drive; the setting EngineNodes asks for more, each with its own device.
class OrvexModel : public DataServerContext
{
    Q_OBJECT
public:
    // Takes ownership of `settings`; makes its own when none is given.
    explicit OrvexModel(OrvexSettings* settings = nullptr, QObject* parent = nullptr);
    ~OrvexModel() override;

    CortexCore* engine() const { return m_engines.first(); }
    OrvexSettings* settings() const { return m_settings; }
    VirtualDevicesSettings* virtualDevicesSettings() const { return m_virtualDevices; }

    // The settings object that has a property of this name (application settings first).
    KxSettings* settingsOwning(const QString& key) const;
    // Keeps changes in memory only, for values given for one run.
    void setPersistent(bool persistent);
    // {"settings": [...], "virtualDeviceSettings": [...]}: every capability object.
    QJsonObject allCapabilities() const;

    // Starts the spectrum and both indices of a node with the current settings; runs whenever
    // its device starts or a metering setting changes while one runs.
    void startMetering(CortexCore* engine);

    // Creates the data server on `httpPort` (the APIPort setting when 0), prepares the folder
    // of its web pages and starts it. False with `error` set when the port cannot be bound.
    bool startDataServer(int httpPort, QString& error);
    OrvexDataServer* dataServer() const { return m_server; }

    // DataServerContext
    int getNodeCount() const override;
    CortexCore* getNode(int index) const override;
    OrvexSettings* getSettings() const override { return m_settings; }
    VirtualDevicesSettings* getVirtualDevicesSettings() const override { return m_virtualDevices; }
    QString getRecordsFolder() const override;
    UserAccountStore* getUserAccounts() const override { return m_accounts; }
    QStringList getFeedbackScreens() const override;
    QString getCurrentFeedbackScreen() const override { return m_feedbackScreen; }
    bool setCurrentFeedbackScreen(const QString& screen) override;
    int getApiPort() const override;
    void closeApplication() override;
    bool openLink(const QUrl& url) override;

    // Settings whose change acts at once, and those read where they are used (at start, by the
    // device search, by the engine's helpers); together they name every application setting.
    using SettingAction = void (*)(OrvexModel* model, CortexCore* engine);
    static const QHash<QString, SettingAction>& settingActions();
    static QStringList settingsReadWhereUsed();

    // The window's model objects, made once when the window is wanted; headless runs have none.
    UiModel* createUiModel(const QString& title);
    UiModel* uiModel() const { return m_ui; }

public Q_SLOTS:
    // Handlers of the first node's recording and device events (connected at start-up).
    void onRecordStarted(const QString& path);
    void onRecordStopped(const QList<QString>& paths, float durationSeconds);
    void onDeviceStopped();

Q_SIGNALS:
    // A client asked the application to close; the owner of the run finishes it cleanly.
    void closeRequested();
    // A line for the window's status bar.
    void statusMessage(const QString& text);

private:
    CortexCore* createEngine();
    void applyEngineSetting(const QString& name);
    void applyLogging();
    void applyRecordingSettings(CortexCore* engine);
    void startIndex(CortexCore* engine, int index, const QString& prefix);

    OrvexSettings* m_settings;
    VirtualDevicesSettings* m_virtualDevices;
    QList<CortexCore*> m_engines;
    UserAccountStore* m_accounts = nullptr;
    OrvexDataServer* m_server = nullptr;
    QString m_feedbackScreen;
    UiModel* m_ui = nullptr;
};
