#include "devices/SimulatedHeadset.h"

#include "devices/OrvexDevice.h"
#include "devices/SimulatedHeadsetPeer.h"
#include "services/GlobalConsole.h"
#include "services/TimeSource.h"
#include "settings/VirtualDevicesSettings.h"

#include <QBluetoothAddress>
#include <QTimer>

SimulatedHeadset::SimulatedHeadset(VirtualDevicesSettings* settings, QObject* parent)
    : AbstractDeviceDiscovery(parent)
    , m_settings(settings)
{
}

QString SimulatedHeadset::advertisedName() const
{
    return m_settings ? m_settings->getHeadsetSimName() : QStringLiteral("OX8G (0031)");
}

bool SimulatedHeadset::isInRange() const
{
    return systemTimeMs() >= m_awayUntilMs;
}

void SimulatedHeadset::start()
{
    if (isInRange()) {
        QBluetoothDeviceInfo info(QBluetoothAddress(QStringLiteral("02:00:00:5E:00:53")), advertisedName(), 0);
        info.setCoreConfigurations(QBluetoothDeviceInfo::LowEnergyCoreConfiguration);
        Q_EMIT deviceDiscovered(info);
    }
    QTimer::singleShot(SearchMs, this, &AbstractDeviceDiscovery::finished);
}

SimulatedHeadsetStream::Faults SimulatedHeadset::nextFaults()
{
    SimulatedHeadsetStream::Faults faults;
    if (!m_settings)
        return faults;
    faults.packetLossPercent = m_settings->getHeadsetSimPacketLoss();
    faults.rateFactor = m_settings->getHeadsetSimRateFactor() > 0 ? m_settings->getHeadsetSimRateFactor() : 1.0;
    if (m_settings->getHeadsetSimSilenceAfter() > 0 && !m_silenceUsed) {
        faults.silenceAfterMs = qint64(m_settings->getHeadsetSimSilenceAfter()) * 1000;
        m_silenceUsed = true;
    }
    if (m_settings->getHeadsetSimDisconnectAfter() > 0 && !m_dropUsed) {
        faults.dropLinkAfterMs = qint64(m_settings->getHeadsetSimDisconnectAfter()) * 1000;
        m_dropUsed = true;
    }
    return faults;
}

AbstractDevice* SimulatedHeadset::createDevice(const QBluetoothDeviceInfo& info, QObject* parent)
{
    auto* peer = new SimulatedHeadsetPeer;
    const int channels = OrvexDevice::capabilityByDeviceName(info.name()).channelCount;
    const int awayMs = m_settings ? m_settings->getHeadsetSimAwayFor() * 1000 : 0;
    new SimulatedHeadsetStream(peer, channels, nextFaults(), [this, awayMs] {
        GlobalConsole::writeLine(QStringLiteral("SIMULATED HEADSET OUT OF RANGE FOR %1 s").arg(awayMs / 1000));
        m_awayUntilMs = systemTimeMs() + awayMs;
    });
    return new OrvexDevice(info, peer, parent);
}
