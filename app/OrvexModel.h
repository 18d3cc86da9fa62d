#pragma once

#include <QJsonObject>
#include <QObject>

class CortexCore;
class KxSettings;
class OrvexSettings;
class VirtualDevicesSettings;

// The application model: owns the settings and the engine and keeps the engine in step with
// the settings.
class OrvexModel : public QObject
{
    Q_OBJECT
public:
    explicit OrvexModel(QObject* parent = nullptr);

    CortexCore* engine() const { return m_engine; }
    OrvexSettings* settings() const { return m_settings; }
    VirtualDevicesSettings* virtualDevicesSettings() const { return m_virtualDevices; }

    // The settings object that has a property of this name (application settings first).
    KxSettings* settingsOwning(const QString& key) const;
    // Keeps changes in memory only, for values given for one run.
    void setPersistent(bool persistent);
    // {"settings": [...], "virtualDeviceSettings": [...]}: every capability object.
    QJsonObject allCapabilities() const;

    // Starts the spectrum and both indices with the current settings; runs whenever a device
    // starts or a metering setting changes while one runs.
    void startMetering();

private:
    void applyEngineSetting(const QString& name);
    void applyRecordingSettings();
    void startIndex(int index, const QString& prefix);

    OrvexSettings* m_settings;
    VirtualDevicesSettings* m_virtualDevices;
    CortexCore* m_engine;
};
