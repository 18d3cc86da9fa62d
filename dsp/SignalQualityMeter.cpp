#include "dsp/SignalQualityMeter.h"

#include "services/GlobalConsoleWriter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double Pi = 3.14159265358979323846;

// Linear ramp from 0 at `bad` to 100 at `good` (either order), clamped to 0...100.
double ramp(double value, double bad, double good)
{
    const double score = 100.0 * (value - bad) / (good - bad);
    return std::clamp(score, 0.0, 100.0);
}

} // namespace

void SignalQualityMeter::reset(int channelCount, float samplingRate)
{
    if (channelCount < 0) {
        kxDebug() << QString("SignalQualityMeter: negative channel count %1").arg(channelCount);
        channelCount = 0;
    }
    m_windowLength = 0;
    m_mainsUsed[0] = m_mainsUsed[1] = false;
    if (std::isfinite(samplingRate) && samplingRate >= MinSamplingRate
        && samplingRate <= MaxSamplingRate) {
        m_windowLength = int(std::lround(samplingRate));
        for (int bin = 0; bin < 2; ++bin) {
            // A bin at or above the Nyquist frequency cannot be observed at this rate.
            m_mainsUsed[bin] = MainsFrequencies[bin] < samplingRate / 2.0;
            const double omega = 2.0 * Pi * MainsFrequencies[bin] / samplingRate;
            m_mainsCoefficient[bin] = 2.0 * std::cos(omega);
        }
    } else {
        kxDebug() << QString("SignalQualityMeter: sampling rate %1 Hz out of range, meter idle")
                         .arg(samplingRate);
    }

    ChannelState initial;
    initial.previous = std::numeric_limits<float>::quiet_NaN();
    m_states.assign(size_t(channelCount), initial);
    m_qualities = QList<int>(channelCount, 0);
}

void SignalQualityMeter::addSamples(int channel, const float* input, const float* filtered,
                                    int count)
{
    if (channel < 0 || channel >= int(m_states.size()) || !input || !filtered || count <= 0
        || m_windowLength <= 0)
        return;
    ChannelState& state = m_states[size_t(channel)];
    while (count > 0) {
        if (state.count == 0)
            startWindow(state, *input, *filtered);
        const int chunk = std::min(count, m_windowLength - state.count);
        accumulate(state, input, filtered, chunk);
        input += chunk;
        filtered += chunk;
        count -= chunk;
        if (state.count == m_windowLength) {
            m_qualities[channel] = finishWindow(state);
            state.count = 0;
        }
    }
}

int SignalQualityMeter::quality(int channel) const
{
    return channel >= 0 && channel < m_qualities.size() ? m_qualities[channel] : 0;
}

double SignalQualityMeter::amplitudeScore(double rmsUv)
{
    // Ramps on a log scale: amplitudes are judged by ratios (1 µV is half-way from 0.5 to 2).
    if (!(rmsUv > FlatRmsUv) || !(rmsUv < NoisyRmsUv))
        return 0.0;
    if (rmsUv < LivelyRmsUv)
        return ramp(std::log(rmsUv), std::log(FlatRmsUv), std::log(LivelyRmsUv));
    if (rmsUv > LoudRmsUv)
        return ramp(std::log(rmsUv), std::log(NoisyRmsUv), std::log(LoudRmsUv));
    return 100.0;
}

double SignalQualityMeter::railScore(double railShare)
{
    return ramp(railShare, RailShareBad, RailShareGood);
}

double SignalQualityMeter::mainsScore(double mainsShare)
{
    return ramp(mainsShare, MainsShareBad, MainsShareGood);
}

void SignalQualityMeter::startWindow(ChannelState& state, float input, float filtered)
{
    const float previous = state.previous;
    state = ChannelState();
    state.previous = previous;
    // Sums are taken around the window's first sample so a large DC offset costs no precision.
    state.inputOrigin = input;
    state.filteredOrigin = filtered;
    state.maximum = input;
    state.minimum = input;
}

void SignalQualityMeter::accumulate(ChannelState& state, const float* input,
                                    const float* filtered, int count) const
{
    // Locals, because the float members could alias the input arrays.
    double inSum = state.inputSum, inSquares = state.inputSquares;
    double fSum = state.filteredSum, fSquares = state.filteredSquares;
    const double inOrigin = state.inputOrigin, fOrigin = state.filteredOrigin;
    double a1 = state.mains[0].s1, a2 = state.mains[0].s2;
    double b1 = state.mains[1].s1, b2 = state.mains[1].s2;
    const double ca = m_mainsCoefficient[0], cb = m_mainsCoefficient[1];
    float maximum = state.maximum, minimum = state.minimum, previous = state.previous;
    int maxRepeats = state.maximumRepeats, minRepeats = state.minimumRepeats;

    for (int i = 0; i < count; ++i) {
        const float x = input[i];
        const double d = double(x) - inOrigin;
        inSum += d;
        inSquares += d * d;
        const double a0 = d + ca * a1 - a2; // Goertzel recurrences, one per mains frequency
        a2 = a1;
        a1 = a0;
        const double b0 = d + cb * b1 - b2;
        b2 = b1;
        b1 = b0;
        // A sample sitting on the rail equals both the running extreme and its predecessor.
        if (x > maximum) {
            maximum = x;
            maxRepeats = 0;
        } else if (x == maximum && x == previous) {
            ++maxRepeats;
        }
        if (x < minimum) {
            minimum = x;
            minRepeats = 0;
        } else if (x == minimum && x == previous) {
            ++minRepeats;
        }
        previous = x;
        const double e = double(filtered[i]) - fOrigin;
        fSum += e;
        fSquares += e * e;
    }

    state.count += count;
    state.inputSum = inSum;
    state.inputSquares = inSquares;
    state.filteredSum = fSum;
    state.filteredSquares = fSquares;
    state.mains[0] = {a1, a2};
    state.mains[1] = {b1, b2};
    state.maximum = maximum;
    state.minimum = minimum;
    state.previous = previous;
    state.maximumRepeats = maxRepeats;
    state.minimumRepeats = minRepeats;
}

double SignalQualityMeter::mainsPower(const ChannelState& state, int bin) const
{
    // |X(omega)|^2 of the window from the Goertzel state; a sine of amplitude A in an exact
    // bin gives (A N / 2)^2, so its power A^2 / 2 is 2 |X|^2 / N^2.
    const Goertzel& g = state.mains[bin];
    const double x2 = g.s1 * g.s1 + g.s2 * g.s2 - m_mainsCoefficient[bin] * g.s1 * g.s2;
    const double n = state.count;
    return 2.0 * std::max(0.0, x2) / (n * n);
}

int SignalQualityMeter::finishWindow(const ChannelState& state) const
{
    // A NaN or infinite sample makes its sum of squares non-finite: nothing here to trust.
    if (!std::isfinite(state.inputSquares) || !std::isfinite(state.filteredSquares))
        return 0;
    const double n = state.count;
    const double inMean = state.inputSum / n;
    const double inVariance = std::max(0.0, state.inputSquares / n - inMean * inMean);
    const double fMean = state.filteredSum / n;
    const double fVariance = std::max(0.0, state.filteredSquares / n - fMean * fMean);

    double mains = 0;
    for (int bin = 0; bin < 2; ++bin) {
        if (m_mainsUsed[bin])
            mains += mainsPower(state, bin);
    }

    const int railed = state.maximum == state.minimum
                           ? state.maximumRepeats
                           : state.maximumRepeats + state.minimumRepeats;
    // Below this variance the input is a flat line; mains cannot be judged (the amplitude
    // check already fails it).
    constexpr double FlatVariance = 1e-12;
    const double mainsShare = inVariance > FlatVariance ? mains / inVariance : 0.0;

    const double score = std::min({amplitudeScore(std::sqrt(fVariance)),
                                    railScore(railed / n), mainsScore(mainsShare)});
    return int(std::lround(score));
}
