#pragma once

#include <QList>

#include <vector>

// Per-channel signal quality in percent (0 bad ... 100 good), from the last one-second window
// of each montage channel. Three checks are scored 0-100 and the worst one is the quality:
//   amplitude: RMS of the filtered signal (flat contact vs. plausible EEG vs. noise);
//   rails:     share of input samples that repeat the window's maximum or minimum (clipping);
//   mains:     share of the input's variance at 50 and 60 Hz (poor electrode contact).
// The accumulation costs a handful of multiply-adds per sample and allocates only in reset().
// Not thread-safe; the engine calls it under its data mutex. See docs/signal-quality.md.
class SignalQualityMeter
{
public:
    // Below this filtered RMS a channel is a flat line (no electrode, shorted input), in µV.
    static constexpr double FlatRmsUv = 0.5;
    // From this filtered RMS on, a channel carries enough signal to be EEG, in µV.
    static constexpr double LivelyRmsUv = 2.0;
    // Up to this filtered RMS the amplitude is plausible EEG including blinks, in µV.
    static constexpr double LoudRmsUv = 200.0;
    // From this filtered RMS on, the channel is noise (an electrode off the skin), in µV.
    static constexpr double NoisyRmsUv = 1000.0;
    // Rail share tolerated: strongly quantised slow signals dwell a little at their extremes.
    static constexpr double RailShareGood = 0.1;
    // Rail share at which the channel counts as saturated: half the window on the rail.
    static constexpr double RailShareBad = 0.5;
    // Mains share tolerated: a trace of mains is normal even with a good contact.
    static constexpr double MainsShareGood = 0.1;
    // Mains share at which mains dominates the channel: the contact is poor or open.
    static constexpr double MainsShareBad = 0.5;
    // Mains frequencies checked, in Hz.
    static constexpr double MainsFrequencies[2] = {50.0, 60.0};
    // Sampling rates accepted by reset(), in Hz; outside, the meter stays idle.
    static constexpr float MinSamplingRate = 1.0f;
    static constexpr float MaxSamplingRate = 1.0e6f;

    // Forgets everything and prepares `channelCount` channels; every quality reads 0 until
    // its first window of round(samplingRate) samples completes.
    void reset(int channelCount, float samplingRate);
    // `input` is the montage channel before the filter chain, `filtered` after it; both hold
    // `count` samples. Out-of-range channels and null pointers are ignored.
    void addSamples(int channel, const float* input, const float* filtered, int count);

    // Last completed value of a channel; 0 before its first window or for a bad index.
    int quality(int channel) const;
    const QList<int>& qualities() const { return m_qualities; }
    int windowLength() const { return m_windowLength; }

    // Score curves of the three checks, 0...100, from the window figures.
    static double amplitudeScore(double rmsUv);
    static double railScore(double railShare);
    static double mainsScore(double mainsShare);

private:
    struct Goertzel
    {
        double s1 = 0;
        double s2 = 0;
    };
    struct ChannelState
    {
        int count = 0;         // samples in the current window
        float previous = 0;    // last input sample, carried across windows (NaN at first)
        double inputOrigin = 0; // first sample of the window; sums are taken around it
        double inputSum = 0;
        double inputSquares = 0;
        double filteredOrigin = 0;
        double filteredSum = 0;
        double filteredSquares = 0;
        float maximum = 0;
        float minimum = 0;
        int maximumRepeats = 0; // samples equal to both the running maximum and their predecessor
        int minimumRepeats = 0;
        Goertzel mains[2];
    };

    static void startWindow(ChannelState& state, float input, float filtered);
    void accumulate(ChannelState& state, const float* input, const float* filtered,
                    int count) const;
    double mainsPower(const ChannelState& state, int bin) const;
    int finishWindow(const ChannelState& state) const;

    std::vector<ChannelState> m_states;
    QList<int> m_qualities;
    int m_windowLength = 0;
    double m_mainsCoefficient[2] = {0, 0};  // 2 cos(omega) per mains frequency
    bool m_mainsUsed[2] = {false, false};   // false at or above the Nyquist frequency
};
