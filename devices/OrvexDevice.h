#pragma once

#include "devices/AbstractBleDevice.h"
#include "devices/OrvexCapability.h"
#include "devices/OrvexDataGrabber.h"

#include <QStringList>

#include <memory>

// The headset: opens its data service, switches streaming on and off with a two-byte command
// on the control characteristic and decodes every data notification into a sample block.
class OrvexDevice : public AbstractBleDevice
{
    Q_OBJECT
public:
    static const QBluetoothUuid DataServiceUuid;
    static const QBluetoothUuid DataCharacteristicUuid;
    static const QBluetoothUuid ControlCharacteristicUuid;
    static const QBluetoothUuid NotificationDescriptorUuid;
    static const QByteArray NotificationsOn;  // 01 00
    static const QByteArray StopCommand;      // 00 00: notifications off, and the stop command
    static constexpr int StopAckTimeoutMs = 2000;

    // Talks to the headset through the platform's Bluetooth stack.
    OrvexDevice(const QBluetoothDeviceInfo& info, QObject* parent = nullptr);
    // Talks through `transport` (owned), e.g. a simulated peer.
    OrvexDevice(const QBluetoothDeviceInfo& info, BleTransport* transport, QObject* parent = nullptr);
    ~OrvexDevice() override;

    bool start(int rate) override;
    bool hasImpedance() override { return false; }
    QString deviceType() override { return QStringLiteral("Orvex headset"); }
    QString deviceVersion() override { return QStringLiteral("BLE 1"); }

    bool isSupportFrameFormat6x3() const;
    bool isStreaming() const { return m_streaming; }
    int lostPackets() const { return m_grabber ? m_grabber->lostPackets() : 0; }
    // How long stop() waits for the headset to acknowledge the stop command.
    void setStopAckTimeoutMs(int ms) { m_stopAckTimeoutMs = ms; }

    static const QList<OrvexCapability>& capabilities();
    static QStringList ValidNames();
    static bool isOrvexName(const QString& name);
    // The row whose prefix starts `name`; a row with no channels for an unknown name.
    static OrvexCapability capabilityByDeviceName(const QString& name);
    // The two command bytes that start streaming at `rate` (125, 250, 500 or 1000 Hz, else 125).
    static QByteArray startCommand(int rate, bool frameFormat6x3);
    static int supportedRate(int rate);

protected:
    void parseDiscoveredService(const QBluetoothUuid& service) override;
    void innerWatchConnection() override;
    void innerStop() override;

private:
    void onServiceDetails(const QBluetoothUuid& service);
    void onCharacteristicWritten(const QBluetoothUuid& characteristic, const QByteArray& value);
    void onCharacteristicChanged(const QBluetoothUuid& characteristic, const QByteArray& value);
    bool isReady() const;

    bool m_serviceRequested = false;
    bool m_serviceReady = false;
    bool m_hasDescriptor = false;
    bool m_hasControl = false;
    int m_rate = 0;
    bool m_pendingStart = false;
    bool m_streaming = false;
    bool m_stopAcknowledged = false;
    bool m_stopping = false;
    int m_stopAckTimeoutMs = StopAckTimeoutMs;
    int m_badRateCount = 0;
    int m_badRateLimit = 5;
    int m_watchTickCount = 0;
    int m_watchTickLimit = 100;
    std::unique_ptr<OrvexDataGrabber> m_grabber;
};
