#include "devices/OrvexDevice.h"

#include "devices/BleTransport.h"
#include "devices/QtBleTransport.h"
#include "services/GlobalConsole.h"
#include "services/GlobalConsoleWriter.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>

const QBluetoothUuid OrvexDevice::DataServiceUuid(QStringLiteral("{f0001298-0451-4000-b000-000000000000}"));
const QBluetoothUuid OrvexDevice::DataCharacteristicUuid(QStringLiteral("{f0001299-0451-4000-b000-000000000000}"));
const QBluetoothUuid OrvexDevice::ControlCharacteristicUuid(QStringLiteral("{f000129a-0451-4000-b000-000000000000}"));
const QBluetoothUuid OrvexDevice::NotificationDescriptorUuid(
    QBluetoothUuid::DescriptorType::ClientCharacteristicConfiguration);
const QByteArray OrvexDevice::NotificationsOn = QByteArray::fromHex("0100");
const QByteArray OrvexDevice::StopCommand = QByteArray::fromHex("0000");

OrvexDevice::OrvexDevice(const QBluetoothDeviceInfo& info, QObject* parent)
    : OrvexDevice(info, new QtBleTransport(info), parent)
{
}

OrvexDevice::OrvexDevice(const QBluetoothDeviceInfo& info, BleTransport* transport, QObject* parent)
    : AbstractBleDevice(info, transport, parent)
{
    const OrvexCapability capability = capabilityByDeviceName(m_name);
    m_channelCount = capability.channelCount;
    m_channelNames = capability.channelNames;
}

OrvexDevice::~OrvexDevice() = default;

// Longer prefixes first: the first row whose prefix starts the name wins. Every prefix is
// accepted by the engine's search, and every channel count has a channel mode and a layout
// in the frame decoder.
const QList<OrvexCapability>& OrvexDevice::capabilities()
{
    static const QList<OrvexCapability> table = {
        { QStringLiteral("Orvex-6G"), 6, { "O1", "T3", "Fp1", "Fp2", "T4", "O2" } },
        { QStringLiteral("Orvex-8"), 8, { "Fp1", "Fp2", "C3", "C4", "T3", "T4", "O1", "O2" } },
        { QStringLiteral("Orvex-4"), 4, { "Fp1", "Fp2", "O1", "O2" } },
        { QStringLiteral("Orvex"), 4, { "Fp1", "Fp2", "O1", "O2" } },
        { QStringLiteral("OX8G"), 8, { "Fp1", "Fp2", "C3", "C4", "T3", "T4", "O1", "O2" } },
        { QStringLiteral("OX6G"), 6, { "O1", "T3", "Fp1", "Fp2", "T4", "O2" } },
        { QStringLiteral("OX4"), 4, { "Fp1", "Fp2", "O1", "O2" } },
        { QStringLiteral("OX"), 4, { "Fp1", "Fp2", "O1", "O2" } },
        { QStringLiteral("Corvanta-2"), 2, { "Ch1", "Ch2" } },
        { QStringLiteral("Corvanta"), 1, { "Ch1" } },
        { QStringLiteral("Kelvo"), 2, { "Fp1", "Fp2" } },
        { QStringLiteral("Zentra"), 1, { "Fpz" } },
        { QStringLiteral("Zen-tra"), 1, { "Fpz" } },
    };
    return table;
}

QStringList OrvexDevice::ValidNames()
{
    QStringList names;
    for (const OrvexCapability& row : capabilities())
        names.append(row.prefix);
    return names;
}

bool OrvexDevice::isOrvexName(const QString& name)
{
    return capabilityByDeviceName(name).channelCount > 0;
}

OrvexCapability OrvexDevice::capabilityByDeviceName(const QString& name)
{
    for (const OrvexCapability& row : capabilities()) {
        if (name.startsWith(row.prefix, Qt::CaseInsensitive))
            return row;
    }
    return { name, 0, {} };
}

int OrvexDevice::supportedRate(int rate)
{
    return rate == 125 || rate == 250 || rate == 500 || rate == 1000 ? rate : 125;
}

QByteArray OrvexDevice::startCommand(int rate, bool frameFormat6x3)
{
    QByteArray command(2, '\0');
    command[0] = char(frameFormat6x3 ? 2 : 1);
    command[1] = char(supportedRate(rate) / 125);
    return command;
}

bool OrvexDevice::isSupportFrameFormat6x3() const
{
    return m_name.startsWith(QStringLiteral("Orvex-6G"));
}

bool OrvexDevice::isReady() const
{
    return transport() && m_serviceReady && m_hasControl && m_hasDescriptor;
}

void OrvexDevice::parseDiscoveredService(const QBluetoothUuid& service)
{
    if (service != DataServiceUuid || m_serviceRequested || !transport())
        return;
    m_serviceRequested = true;
    BleTransport* peer = transport();
    m_connections << connect(peer, &BleTransport::serviceDetailsDiscovered, this, &OrvexDevice::onServiceDetails,
                             Qt::QueuedConnection)
                  << connect(peer, &BleTransport::characteristicWritten, this,
                             &OrvexDevice::onCharacteristicWritten)
                  << connect(peer, &BleTransport::characteristicChanged, this,
                             &OrvexDevice::onCharacteristicChanged, Qt::QueuedConnection);
    peer->discoverServiceDetails(DataServiceUuid);
}

void OrvexDevice::onServiceDetails(const QBluetoothUuid& service)
{
    BleTransport* peer = transport();
    if (service != DataServiceUuid || !peer || !peer->hasCharacteristic(DataServiceUuid, DataCharacteristicUuid))
        return;
    m_serviceReady = true;
    m_hasDescriptor = peer->hasDescriptor(DataServiceUuid, DataCharacteristicUuid, NotificationDescriptorUuid);
    m_hasControl = peer->hasCharacteristic(DataServiceUuid, ControlCharacteristicUuid);
    if (m_hasControl && m_pendingStart)
        start(m_rate);
}

bool OrvexDevice::start(int rate)
{
    m_rate = rate;
    kxDebug() << QStringLiteral("RATE") << rate;
    // A fresh battery level with every start; the watch ticks repeat the read from then on.
    startReadBattery();
    if (!isReady()) {
        m_pendingStart = true;
        return false;
    }
    transport()->writeDescriptor(DataServiceUuid, DataCharacteristicUuid, NotificationDescriptorUuid,
                                 NotificationsOn);
    m_samplingRate = float(supportedRate(rate));
    transport()->writeCharacteristic(DataServiceUuid, ControlCharacteristicUuid,
                                     startCommand(rate, isSupportFrameFormat6x3()));
    m_pendingStart = false;
    m_streaming = true;
    m_stopping = false;
    watchConnection();
    return true;
}

void OrvexDevice::onCharacteristicChanged(const QBluetoothUuid& characteristic, const QByteArray& value)
{
    if (characteristic != DataCharacteristicUuid)
        return;
    if (!m_grabber || m_grabber->channelCount() != m_channelCount) {
        m_grabber = std::make_unique<OrvexDataGrabber>(m_channelCount,
                                                       isSupportFrameFormat6x3() ? OrvexFrame6x3 : OrvexFrameDefault);
        m_grabber->setDeviceName(m_name);
    }
    const QList<QList<float>> block = m_grabber->addData(value);
    // The counter's marker carries the packets lost so far, for whoever reports the link.
    m_counter->setMarker(m_grabber->lostPackets());
    emitSample(block);
}

void OrvexDevice::innerWatchConnection()
{
    if (m_watchTickCount >= m_watchTickLimit || m_samplingRate <= 0)
        return;
    if (++m_watchTickCount == m_watchTickLimit) {
        GlobalConsole::writeLine(QStringLiteral("From now on bad frame rate is not watched"));
        return;
    }
    const double ratio = double(dataRate()) / double(m_samplingRate);
    if (!(ratio > 0.3))
        return;
    if (ratio < 0.59 || ratio > 1.3) {
        GlobalConsole::writeLine(QStringLiteral("KINDA WRONG DATA RATE ") + QString::number(ratio, 'g', 6));
        ++m_badRateCount;
    } else if (m_badRateCount > 0) {
        --m_badRateCount;
    }
    if (m_badRateCount == m_badRateLimit) {
        Q_EMIT wrongDataRate();
        GlobalConsole::writeLine(QStringLiteral("WRONG DATA RATE!!!"));
    }
}

// A late acknowledgement of the start command is not the one the stop waits for.
void OrvexDevice::onCharacteristicWritten(const QBluetoothUuid& characteristic, const QByteArray& value)
{
    if (characteristic != ControlCharacteristicUuid || !m_stopping || value != StopCommand)
        return;
    kxDebug() << QStringLiteral("STOP CHAR WRITTEn!");
    m_stopAcknowledged = true;
}

void OrvexDevice::innerStop()
{
    if (!m_streaming || !transport() || connectionState() == NOT_CONNECTED) {
        m_stopAcknowledged = true;
        m_streaming = false;
        kxDebug() << QStringLiteral("ALREADY STOPPED") << m_name;
        return;
    }
    m_stopping = true;
    m_stopAcknowledged = false;
    BleTransport* peer = transport();
    if (m_hasDescriptor)
        peer->writeDescriptor(DataServiceUuid, DataCharacteristicUuid, NotificationDescriptorUuid, StopCommand);
    if (m_hasControl)
        peer->writeCharacteristic(DataServiceUuid, ControlCharacteristicUuid, StopCommand);

    // Wait in short slices for the acknowledgement; other events keep being delivered.
    QElapsedTimer elapsed;
    elapsed.start();
    QEventLoop loop;
    QTimer slice;
    slice.setSingleShot(true);
    connect(&slice, &QTimer::timeout, &loop, &QEventLoop::quit);
    const auto ack = connect(peer, &BleTransport::characteristicWritten, &loop, [this, &loop] {
        if (m_stopAcknowledged)
            loop.quit();
    });
    while (!m_stopAcknowledged && elapsed.elapsed() < m_stopAckTimeoutMs) {
        slice.start(std::clamp(int(m_stopAckTimeoutMs - elapsed.elapsed()), 1, 100));
        loop.exec();
    }
    disconnect(ack);
    m_stopping = false;
    m_streaming = false;
    kxDebug() << QStringLiteral("STOPPED") << m_name << QStringLiteral("in") << int(elapsed.elapsed())
              << QStringLiteral("ms");
    close();
}
