#pragma once

#include "core/AbstractDeviceDiscovery.h"

class QBluetoothDeviceDiscoveryAgent;

// Bluetooth LE search through the platform's discovery agent.
class BleDeviceDiscovery : public AbstractDeviceDiscovery
{
    Q_OBJECT
public:
    explicit BleDeviceDiscovery(QObject* parent = nullptr);

    bool prepareAdapter() override;

public Q_SLOTS:
    void start() override;
    void stop() override;

private:
    static constexpr int FailedSearchDelayMs = 1000;
    QBluetoothDeviceDiscoveryAgent* m_agent;
};
