#pragma once

#include "core/AbstractDeviceDiscovery.h"

#include <QList>

// Several Bluetooth LE searches run as one, so the window lists the simulated headset beside
// real ones. A search without an adapter is left out; the others still run.
class CombinedDeviceDiscovery : public AbstractDeviceDiscovery
{
    Q_OBJECT
public:
    // Takes ownership of the parts.
    explicit CombinedDeviceDiscovery(const QList<AbstractDeviceDiscovery*>& parts, QObject* parent = nullptr);

    bool prepareAdapter() override;
    // Whether the part at `index` had an adapter at the last prepareAdapter().
    bool isPartReady(int index) const;

public Q_SLOTS:
    void start() override;
    void stop() override;

private:
    void onPartFinished();

    QList<AbstractDeviceDiscovery*> m_parts;
    QList<bool> m_ready;
    int m_running = 0;
};
