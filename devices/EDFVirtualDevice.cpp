#include "devices/EDFVirtualDevice.h"
#include "devices/TickPacer.h"

#include "formats/EDFReader.h"
#include "services/GlobalConsoleWriter.h"
#include "services/KxTimer.h"

#include <algorithm>
#include <QtGlobal>

#include <climits>
#include <cmath>
#include <utility>

namespace {

// One playback position for every player in the process.
int& sharedPosition()
{
    static int position = 0;
    return position;
}

} // namespace

EDFVirtualDevice::EDFVirtualDevice(QObject* parent)
    : AbstractDevice(parent)
{
    m_dataTimer = new KxTimer(40, this);
    connect(m_dataTimer, &QTimer::timeout, this, &EDFVirtualDevice::onDataTimer);
    m_name = QStringLiteral("EDFVirtualDevice");
    setConnectedState(CONNECTED);
}

EDFVirtualDevice::~EDFVirtualDevice() = default;

void EDFVirtualDevice::setPath(QString path)
{
    m_path = std::move(path);
    releaseReader();
    m_reader = new EDFReader(m_path, this);
    m_channelData.clear();
    m_channelNames.clear();
    m_channelCount = 0;
    m_length = 0;
    if (!m_reader->open()) {
        kxDebug() << QString("Error opening file %1 (opened: %2)").arg(m_path).arg(m_reader->isFileOpened());
        return;
    }
    m_channelCount = m_reader->getChannelCount();
    m_length = int(qMin<unsigned>(m_reader->lengthSamples(), unsigned(INT_MAX)));
    m_samplingRate = m_reader->samplingRate();
    m_samplesPerMs = m_samplingRate / 1000.0f;
    m_samplesThisTick = qint32(m_samplingRate / 25.0f);
    const QList<QString> names = m_reader->getChannelNames();
    m_channelData.reserve(m_channelCount);
    for (int ch = 0; ch < m_channelCount; ++ch) {
        m_channelData.append(m_reader->getChannelDataFloat(unsigned(ch), 0, unsigned(m_length)));
        m_channelNames.append(names.value(ch).trimmed());
    }
}

void EDFVirtualDevice::setTimeSource(TimeSource source)
{
    m_timeSource = std::move(source);
}

QString EDFVirtualDevice::deviceType() { return QStringLiteral("EDFVirtualDevice"); }
QString EDFVirtualDevice::deviceVersion() { return QStringLiteral("1.0"); }
bool EDFVirtualDevice::hasBattery() { return false; }
bool EDFVirtualDevice::hasImpedance() { return false; }

bool EDFVirtualDevice::open()
{
    if (m_channelData.isEmpty())
        return false;
    return start(0);
}

bool EDFVirtualDevice::start(int)
{
    // A restart must not deliver the whole pause as one block: the first tick restamps the clock.
    m_lastTickTime = 0;
    if (m_dataTimer)
        m_dataTimer->start();
    return true;
}

void EDFVirtualDevice::stop()
{
    if (m_dataTimer)
        m_dataTimer->stop();
}

void EDFVirtualDevice::close()
{
    stop();
    m_channelData.clear();
    releaseReader();
}

void EDFVirtualDevice::releaseReader()
{
    if (m_reader)
        m_reader->deleteLater();
    m_reader = nullptr;
}

qint64 EDFVirtualDevice::position() const
{
    return sharedPosition();
}

void EDFVirtualDevice::seek(qint64 sample)
{
    sharedPosition() = int(std::clamp<qint64>(sample, 0, std::max(0, m_length - 1)));
}

void EDFVirtualDevice::setPaused(bool paused)
{
    m_paused = paused;
    m_lastTickTime = 0; // the next tick after a pause only restamps the clock
}

bool EDFVirtualDevice::setSpeed(double speed)
{
    if (!(speed >= MinSpeed && speed <= MaxSpeed))
        return false;
    m_speed = speed;
    return true;
}

void EDFVirtualDevice::onDataTimer()
{
    if (m_paused) {
        m_lastTickTime = 0;
        return;
    }
    calcSampleOnPack();
    const int n = m_samplesThisTick;
    if (n <= 0)
        return;
    int& position = sharedPosition();
    // Samples past the end are dropped, so the last block before the loop is shorter.
    const qint64 available = qMax<qint64>(0, qint64(m_length) - position);
    const int count = int(qMin<qint64>(n, available));
    QList<QList<float>> block(m_channelData.size());
    for (int ch = 0; ch < m_channelData.size(); ++ch) {
        const QList<float>& source = m_channelData[ch];
        const int taken = int(qMin<qsizetype>(count, qMax<qsizetype>(0, source.size() - position)));
        block[ch] = source.mid(position, taken);
    }
    const qint64 next = qint64(position) + n;
    position = next >= m_length ? 0 : int(next);
    emitSample(block);
}

void EDFVirtualDevice::calcSampleOnPack()
{
    const qint64 now = m_timeSource ? m_timeSource() : systemTimeMs();
    m_samplesThisTick = TickPacer::samplesDue(now, float(m_samplesPerMs * m_speed), m_lastTickTime, m_sampleCarry);
}

qint64 EDFVirtualDevice::emitRange(qint64 first, int blockSamples, int blocks)
{
    if (m_channelData.isEmpty() || blockSamples < 1 || first < 0)
        return m_length;
    qint64 next = first;
    for (int b = 0; b < blocks && next < m_length; ++b) {
        const qint64 count = std::min<qint64>(blockSamples, m_length - next);
        QList<QList<float>> block;
        block.reserve(m_channelData.size());
        for (const QList<float>& channel : std::as_const(m_channelData))
            block.append(channel.mid(next, count));
        emitSample(block);
        next += count;
    }
    return next;
}
