#include "devices/CombinedDeviceDiscovery.h"

CombinedDeviceDiscovery::CombinedDeviceDiscovery(const QList<AbstractDeviceDiscovery*>& parts, QObject* parent)
    : AbstractDeviceDiscovery(parent)
    , m_parts(parts)
    , m_ready(parts.size(), false)
{
    for (AbstractDeviceDiscovery* part : parts) {
        part->setParent(this);
        connect(part, &AbstractDeviceDiscovery::deviceDiscovered, this, &AbstractDeviceDiscovery::deviceDiscovered);
        connect(part, &AbstractDeviceDiscovery::finished, this, &CombinedDeviceDiscovery::onPartFinished);
        connect(part, &AbstractDeviceDiscovery::canceled, this, &CombinedDeviceDiscovery::onPartFinished);
    }
}

bool CombinedDeviceDiscovery::prepareAdapter()
{
    bool any = false;
    for (int i = 0; i < m_parts.size(); ++i) {
        m_ready[i] = m_parts[i]->prepareAdapter();
        any = any || m_ready[i];
    }
    return any;
}

bool CombinedDeviceDiscovery::isPartReady(int index) const
{
    return index >= 0 && index < m_ready.size() && m_ready[index];
}

void CombinedDeviceDiscovery::start()
{
    m_running = 0;
    for (int i = 0; i < m_parts.size(); ++i) {
        if (m_ready[i]) {
            ++m_running;
            m_parts[i]->start();
        }
    }
    if (m_running == 0)
        Q_EMIT finished();
}

void CombinedDeviceDiscovery::stop()
{
    for (AbstractDeviceDiscovery* part : std::as_const(m_parts))
        part->stop();
}

// The combined search ends when the last running part ends.
void CombinedDeviceDiscovery::onPartFinished()
{
    if (m_running > 0 && --m_running == 0)
        Q_EMIT finished();
}
