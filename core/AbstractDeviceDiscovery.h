#pragma once

#include <QBluetoothDeviceInfo>
#include <QObject>

// The engine's view of a Bluetooth LE search, so the search can be driven by a fake in tests.
class AbstractDeviceDiscovery : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // Prepares the local adapter (powers it on); false when there is none or it is off.
    virtual bool prepareAdapter() = 0;

public Q_SLOTS:
    virtual void start() = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    void finished();
    void canceled();
    void deviceDiscovered(const QBluetoothDeviceInfo& info);
};
