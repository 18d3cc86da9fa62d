#pragma once

#include <memory>
#include <vector>

class AbstractFilter;

// One channel's filter chain, in order: high-pass, low-pass, then one notch per band-stop
// frequency. A cut-off of 0 switches that filter off; cut-offs at or above the Nyquist
// frequency are left out because they cannot be realised at that rate.
class FilterChain
{
public:
    struct Settings
    {
        float samplingRate = 0;
        float hpf = 0;
        int hpfOrder = 4;
        float lpf = 0;
        int lpfOrder = 4;
        float bsf = 0;
        float bsf2 = 0;
        bool useFir = true; // recursive-section family; false: the Butterworth cascade family
    };

    // Width of the mains notch: wide enough for the mains drifting by a few tenths of a hertz.
    static constexpr float NotchBandwidthHz = 2.0f;

    FilterChain();
    ~FilterChain();
    FilterChain(FilterChain&&) noexcept;
    FilterChain& operator=(FilterChain&&) noexcept;

    // Replaces the filters; returns false when a requested filter could not be realised.
    bool build(const Settings& settings);
    void process(float* data, int count);
    void reset();
    int filterCount() const { return int(m_filters.size()); }

private:
    std::vector<std::unique_ptr<AbstractFilter>> m_filters;
};
