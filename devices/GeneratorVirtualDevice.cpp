#include "devices/GeneratorVirtualDevice.h"
#include "devices/TickPacer.h"

#include "services/KxTimer.h"
#include "services/TextHelper.h"
#include "settings/VirtualDevicesSettings.h"

#include <QtGlobal>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <utility>

namespace {

// Per-sample ECG tracing; off unless "orvex.generator.trace.debug=true" is enabled.

// Picked up by the translation tools: the value names shown for GeneratorType.
[[maybe_unused]] const char* const kGeneratorTypeNames[] = {
    QT_TRANSLATE_NOOP("GeneratorType", "Sine"),   QT_TRANSLATE_NOOP("GeneratorType", "Saw"),
    QT_TRANSLATE_NOOP("GeneratorType", "Random"), QT_TRANSLATE_NOOP("GeneratorType", "Meander"),
    QT_TRANSLATE_NOOP("GeneratorType", "DoubleSine"), QT_TRANSLATE_NOOP("GeneratorType", "ModulatedSine"),
    QT_TRANSLATE_NOOP("GeneratorType", "ECG"),
};

constexpr float kTwoPi = 6.28318530717958647692f;
constexpr double kPi = 3.14159265358979323846;
constexpr qint32 kSineCounterWrap = 0x7FFFFFFF;

// One beat over 0..100 %: q2, q1, q0, amp, omega, phi, start %, end %.
// y(x) = q2*x^2 + q1*x + q0 + amp + amp*sin(omega*x + phi), x running 0..1 over the segment.
constexpr double kEcgSegments[8][8] = {
    {0, 0, 0, 0.05, 2 * kPi, -kPi / 2, 0, 15},  // P wave
    {0, -0.1, 0, 0, 0, 0, 20, 25},              // Q
    {0, 1.1, -0.1, 0, 0, 0, 25, 29},            // R up
    {0, -1.4, 1.0, 0, 0, 0, 29, 33},            // R down
    {0, 0.4, -0.4, 0, 0, 0, 33, 36},            // S back to baseline
    {0, 0, 0, 0.1, kPi, -kPi / 2, 45, 60},      // T rising
    {0, 0, 0, 0.1, kPi, kPi / 2, 60, 70},       // T falling
    {0, 0, 0, 0, 0, 0, 70, 100},                // baseline
};

// State every generator instance shares: one time axis, one noise sequence, one set of
// per-channel phases.
struct SharedGeneratorState
{
    qint32 sineCounter = 0;
    QList<int> sawCounters;
    QList<int> meanderCounters;
    QList<bool> meanderLevels;
    QList<int> ecgPositions;
    QList<int> hrvOffsets;
    QList<bool> hrvDirections;
    QList<QList<float>> ecgTemplates;
    std::mt19937_64 random{1};
};

SharedGeneratorState& shared()
{
    static SharedGeneratorState state;
    return state;
}

template<typename T>
void fitToChannels(QList<T>& list, int channelCount)
{
    if (list.size() == channelCount)
        return;
    list.clear();
    list.resize(channelCount, T());
}

// Truncating conversion that gives INT_MIN for infinite, NaN or out-of-range values, as the
// hardware conversion does, instead of undefined behaviour.
int truncToInt(double value)
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return INT_MIN;
    return int(value);
}

// Samples per period; at least 2, so a zero frequency still gives a valid period.
int periodSamples(float samplingRate, float frequency)
{
    return qMax(truncToInt(samplingRate / frequency), 2);
}

void buildEcgTemplate(QList<float>& beat, int period)
{
    beat.clear();
    beat.resize(period, 0.0f);
    for (const auto& seg : kEcgSegments) {
        const int i0 = truncToInt(period * seg[6] / 100.0);
        const int i1 = truncToInt(period * seg[7] / 100.0);
        const int count = i1 - i0;
        for (int k = 0; k < count; ++k) {
            const double x = double(k) / count;
            const double y = seg[0] * x * x + seg[1] * x + seg[2] + seg[3] + seg[3] * std::sin(seg[4] * x + seg[5]);
            beat[i0 + k] = float(y);
        }
    }
}

} // namespace

GeneratorVirtualDevice::GeneratorVirtualDevice(QObject* parent)
    : AbstractDevice(parent)
    , m_samplesPerMs(m_samplingRate / 1000.0f)
{
    m_dataTimer = new KxTimer(50, this);
    connect(m_dataTimer, &QTimer::timeout, this, &GeneratorVirtualDevice::onDataTimer);
    m_name = QStringLiteral("GeneratorDevice");
}

GeneratorVirtualDevice::~GeneratorVirtualDevice() = default;

void GeneratorVirtualDevice::setSettings(VirtualDevicesSettings* settings)
{
    if (!settings)
        return;
    const QList<QString> names = TextHelper::splitAndTrim(settings->getGeneratorChannelNames(), QStringLiteral(","));
    setSettings(float(settings->getGeneratorSamplingRate()), settings->getGeneratorBaseFrequency(),
                settings->getGeneratorFrequencyIncrement(), settings->getGeneratorAmplitude(), names,
                int(settings->getSignalType()), settings->getGeneratorSecondFrequency());
    m_ecgHeartRate = settings->getGeneratorECGbpm();
    m_ecgHrv = settings->getGeneratorECGHRV();
}

void GeneratorVirtualDevice::setSettings(float samplingRate, float baseFrequency, float frequencyIncrement,
                                         float amplitude, QList<QString> channelNames, int signalType,
                                         float secondFrequency)
{
    setFrequency(samplingRate);
    m_baseFrequency = baseFrequency;
    m_frequencyIncrement = frequencyIncrement;
    m_amplitude = amplitude;
    setChannelNames(std::move(channelNames));
    // One setting serves as the second frequency or as the modulation frequency.
    m_secondFrequency = 0;
    m_modulationFrequency = 0;
    if (signalType == DoubleSine)
        m_secondFrequency = secondFrequency;
    else if (signalType == ModulatedSine)
        m_modulationFrequency = secondFrequency;
    m_lastTickTime = 0;
    m_signalType = signalType;
}

void GeneratorVirtualDevice::setFrequency(float samplingRate)
{
    m_samplingRate = samplingRate;
    if (samplingRate > 0)
        m_samplesPerMs = samplingRate / 1000.0f;
}

void GeneratorVirtualDevice::setAmplitude(float amplitude) { m_amplitude = amplitude; }
void GeneratorVirtualDevice::setBaseFreq(float frequency) { m_baseFrequency = frequency; }
void GeneratorVirtualDevice::setFreqIncrement(float increment) { m_frequencyIncrement = increment; }
void GeneratorVirtualDevice::setSignalType(int type) { m_signalType = type; }

void GeneratorVirtualDevice::setChannelNames(QList<QString> names)
{
    m_channelNames = std::move(names);
    m_channelCount = qint32(m_channelNames.size());
}

void GeneratorVirtualDevice::setTimeSource(TimeSource source)
{
    m_timeSource = std::move(source);
}

QString GeneratorVirtualDevice::deviceType() { return QStringLiteral("GeneratorDevice"); }
QString GeneratorVirtualDevice::deviceVersion() { return QStringLiteral("1.0"); }
bool GeneratorVirtualDevice::hasBattery() { return false; }
bool GeneratorVirtualDevice::hasImpedance() { return false; }

bool GeneratorVirtualDevice::open()
{
    return start(0);
}

bool GeneratorVirtualDevice::start(int)
{
    // A restart must not deliver the whole pause as one block: the first tick restamps the clock.
    m_lastTickTime = 0;
    if (m_dataTimer)
        m_dataTimer->start();
    setConnectedState(CONNECTED);
    return true;
}

void GeneratorVirtualDevice::stop()
{
    if (m_dataTimer)
        m_dataTimer->stop();
}

void GeneratorVirtualDevice::close()
{
    if (m_dataTimer)
        m_dataTimer->stop();
}

void GeneratorVirtualDevice::onDataTimer()
{
    calcSampleOnPack();
    if (m_samplesThisTick <= 0)
        return;
    switch (m_signalType) {
    case Sine:
    case DoubleSine:
    case ModulatedSine:
        makeSine();
        break;
    case Saw:
        makeSaw();
        break;
    case Random:
        makeRandom();
        break;
    case Meander:
        makeMeander();
        break;
    case ECG:
        makeECG();
        break;
    default:
        break;
    }
}

void GeneratorVirtualDevice::calcSampleOnPack()
{
    const qint64 now = m_timeSource ? m_timeSource() : systemTimeMs();
    m_samplesThisTick = TickPacer::samplesDue(now, m_samplesPerMs, m_lastTickTime, m_sampleCarry);
}

float GeneratorVirtualDevice::channelFrequency(int channel) const
{
    return m_baseFrequency + float(channel) * m_frequencyIncrement;
}

QList<QList<float>> GeneratorVirtualDevice::newBlock() const
{
    QList<QList<float>> block(m_channelCount);
    for (auto& channel : block)
        channel.reserve(m_samplesThisTick);
    return block;
}

void GeneratorVirtualDevice::makeSine()
{
    SharedGeneratorState& state = shared();
    const int n = m_samplesThisTick;
    QList<QList<float>> block = newBlock();
    for (int ch = 0; ch < m_channelCount; ++ch) {
        const float frequency = channelFrequency(ch);
        const float second = m_secondFrequency + float(ch) * m_frequencyIncrement;
        QList<float>& out = block[ch];
        for (int k = 0; k < n; ++k) {
            const float t = float(qint64(state.sineCounter) + k) * kTwoPi / m_samplingRate;
            float y = std::sin(frequency * t);
            if (m_secondFrequency > 0)
                y += std::sin(second * t);
            else if (m_modulationFrequency > 0)
                y *= std::fabs(std::sin(m_modulationFrequency * t));
            out.append(y * m_amplitude);
        }
    }
    // A phase jump every 2^31 samples is accepted.
    const qint64 next = qint64(state.sineCounter) + n;
    state.sineCounter = next >= kSineCounterWrap ? 0 : qint32(next);
    emitSample(block);
}

void GeneratorVirtualDevice::makeSaw()
{
    SharedGeneratorState& state = shared();
    fitToChannels(state.sawCounters, m_channelCount);
    QList<QList<float>> block = newBlock();
    for (int ch = 0; ch < m_channelCount; ++ch) {
        const int period = periodSamples(m_samplingRate, channelFrequency(ch));
        int m = state.sawCounters[ch];
        QList<float>& out = block[ch];
        for (int k = 0; k < m_samplesThisTick; ++k) {
            out.append(float(m) * m_amplitude / float(period));
            m = m + 1 < period ? m + 1 : 0;
        }
        state.sawCounters[ch] = m;
    }
    emitSample(block);
}

void GeneratorVirtualDevice::makeMeander()
{
    SharedGeneratorState& state = shared();
    fitToChannels(state.meanderCounters, m_channelCount);
    fitToChannels(state.meanderLevels, m_channelCount);
    QList<QList<float>> block = newBlock();
    for (int ch = 0; ch < m_channelCount; ++ch) {
        // Each level lasts a whole period, so the square wave runs at half the set frequency.
        const int period = periodSamples(m_samplingRate, channelFrequency(ch));
        int counter = state.meanderCounters[ch];
        bool level = state.meanderLevels[ch];
        QList<float>& out = block[ch];
        for (int k = 0; k < m_samplesThisTick; ++k) {
            out.append(float(level) * m_amplitude);
            if (++counter >= period) {
                counter = 0;
                level = !level;
            }
        }
        state.meanderCounters[ch] = counter;
        state.meanderLevels[ch] = level;
    }
    emitSample(block);
}

float GeneratorVirtualDevice::randomFloat(float min, float max)
{
    const double u = double(shared().random() >> 11) * 0x1.0p-53;
    return float(double(min) + u * (double(max) - double(min)));
}

void GeneratorVirtualDevice::makeRandom()
{
    QList<QList<float>> block = newBlock();
    for (int ch = 0; ch < m_channelCount; ++ch) {
        QList<float>& out = block[ch];
        for (int k = 0; k < m_samplesThisTick; ++k)
            out.append(randomFloat(-m_amplitude, m_amplitude));
    }
    emitSample(block);
}

void GeneratorVirtualDevice::makeECG()
{
    SharedGeneratorState& state = shared();
    fitToChannels(state.ecgPositions, m_channelCount);
    fitToChannels(state.hrvOffsets, m_channelCount);
    fitToChannels(state.hrvDirections, m_channelCount);
    fitToChannels(state.ecgTemplates, m_channelCount);

    // The RR interval shortens by up to 100 ms, walking up and down in steps of hrvStep.
    const int maxOffset = truncToInt(m_samplingRate / 10.0f);
    const int hrvStep = truncToInt(float(maxOffset) * m_ecgHrv / 5.0f);

    QList<QList<float>> block = newBlock();
    for (int ch = 0; ch < m_channelCount; ++ch) {
        const float frequency = m_ecgHeartRate / 60.0f + float(ch) * m_frequencyIncrement;
        const int period = periodSamples(m_samplingRate, frequency);
        QList<float>& beat = state.ecgTemplates[ch];
        if (beat.size() != period)
            buildEcgTemplate(beat, period);

        int q = state.ecgPositions[ch];
        QList<float>& out = block[ch];
        for (int k = 0; k < m_samplesThisTick; ++k) {
            // A position left over from a longer beat yields no sample for this step.
            if (q < beat.size()) {
                // Inverted: EEG displays draw negative upwards, so the R peak points up there.
                out.append(-m_amplitude * beat[q]);
                qDebug("BAD ECG sample"); // written for every beat sample, shown with --verbose
            }
            ++q;
            if (qint64(q) < qint64(period) - state.hrvOffsets[ch])
                continue;
            qint64 offset = qint64(state.hrvOffsets[ch]) + (state.hrvDirections[ch] ? hrvStep : -qint64(hrvStep));
            if (offset > maxOffset) {
                offset = qint64(maxOffset) - hrvStep;
                state.hrvDirections[ch] = !state.hrvDirections[ch];
            } else if (offset < 0) {
                offset = hrvStep;
                state.hrvDirections[ch] = !state.hrvDirections[ch];
            }
            state.hrvOffsets[ch] = int(std::clamp<qint64>(offset, INT_MIN, INT_MAX));
            q = 0;
        }
        state.ecgPositions[ch] = q;
    }
    emitSample(block);
}
