#include "core/AbstractDevice.h"

AbstractDevice::AbstractDevice(QObject* parent)
    : QObject(parent)
    , m_counter(new DataCounter(this))
{
}

AbstractDevice::~AbstractDevice()
{
    for (const auto& connection : std::as_const(m_connections))
        disconnect(connection);
}

bool AbstractDevice::hasAccelerometer() { return false; }
void AbstractDevice::measureImpedance(bool) {}
AbstractDevice::ConnectionState AbstractDevice::connectionState() { return m_connectionState; }
QList<QString> AbstractDevice::channelNames() { return m_channelNames; }
int AbstractDevice::channelCount() { return m_channelCount; }
float AbstractDevice::samplingRate() { return m_samplingRate; }
QString AbstractDevice::name() { return m_name; }
QString AbstractDevice::privateName() { return m_privateName.isEmpty() ? m_name : m_privateName; }
int AbstractDevice::batteryLevel() { return m_batteryLevel; }
QString AbstractDevice::receiverId() { return m_receiverId; }
void AbstractDevice::setReceiverId(QString id) { m_receiverId = id; }
void AbstractDevice::customCommand(QString) {}

void AbstractDevice::setBatteryLevel(int value)
{
    const int stored = qMin(value, 100);
    if (stored == m_batteryLevel)
        return;
    m_batteryLevel = stored;
    Q_EMIT batteryLevelUpdated(stored);
}

void AbstractDevice::emitSample(const QList<QList<float>>& channelWise)
{
    if (channelWise.isEmpty())
        return;
    m_counter->addFrame(int(channelWise.first().size()));
    Q_EMIT dataReady(channelWise);
    // The first data after a loss of connection marks the device connected again.
    if (m_connectionState != CONNECTED) {
        m_connectionState = CONNECTED;
        Q_EMIT connectionStateChanged();
        Q_EMIT connected();
    }
}

void AbstractDevice::emitAccelerometerSample(const QList<QList<float>>& data)
{
    if (!data.isEmpty())
        Q_EMIT accelerometerDataReady(data);
}

float AbstractDevice::dataRate() const
{
    return float(m_counter->dataRate());
}

void AbstractDevice::setConnected(bool connected)
{
    setConnectedState(connected ? CONNECTED : NOT_CONNECTED);
}

void AbstractDevice::setConnectedState(ConnectionState state)
{
    if (state == m_connectionState)
        return;
    m_connectionState = state;
    Q_EMIT connectionStateChanged();
    if (state == CONNECTED)
        Q_EMIT connected();
    else if (state == NOT_CONNECTED)
        Q_EMIT disconnected();
}
