#pragma once

#include <QObject>

class CortexCore;
class OrvexSettings;

// Applies the montage file the user tied to a device (the DeviceMontages setting) whenever that
// device starts in this engine, with or without a window.
class DeviceMontageApplier : public QObject
{
    Q_OBJECT
public:
    DeviceMontageApplier(CortexCore* engine, OrvexSettings* settings);

private:
    void apply();

    CortexCore* m_engine;
    OrvexSettings* m_settings;
};
