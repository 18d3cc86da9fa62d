#include "dsp/FilterChain.h"

#include "dsp/ButterworthFilter.h"
#include "dsp/FIRfilter.h"
#include "dsp/NotchFilter.h"

namespace {
bool realisable(float cutoff, float samplingRate)
{
    return cutoff < samplingRate / 2;
}
}

FilterChain::FilterChain() = default;
FilterChain::~FilterChain() = default;
FilterChain::FilterChain(FilterChain&&) noexcept = default;
FilterChain& FilterChain::operator=(FilterChain&&) noexcept = default;

bool FilterChain::build(const Settings& s)
{
    m_filters.clear();
    if (s.samplingRate <= 0)
        return false;
    bool complete = true;
    const auto window = AbstractFilter::WindowTypeEnum(0);

    if (s.hpf > 0) {
        if (!realisable(s.hpf, s.samplingRate))
            complete = false;
        else if (s.useFir)
            m_filters.emplace_back(new FIRfilter(AbstractFilter::HighPass, window, s.hpfOrder, s.samplingRate, s.hpf));
        else // the Butterworth high-pass takes its cut-off from the second frequency
            m_filters.emplace_back(new ButterworthFilter(AbstractFilter::HighPass, s.hpfOrder, s.samplingRate, 0, s.hpf));
    }
    if (s.lpf > 0) {
        if (!realisable(s.lpf, s.samplingRate))
            complete = false;
        else if (s.useFir)
            m_filters.emplace_back(new FIRfilter(AbstractFilter::LowPass, window, s.lpfOrder, s.samplingRate, s.lpf));
        else
            m_filters.emplace_back(new ButterworthFilter(AbstractFilter::LowPass, s.lpfOrder, s.samplingRate, s.lpf, 0));
    }
    for (float notch : { s.bsf, s.bsf2 }) {
        if (notch <= 0)
            continue;
        if (!realisable(notch, s.samplingRate))
            complete = false;
        else
            m_filters.emplace_back(new NotchFilter(s.samplingRate, notch, NotchBandwidthHz));
    }
    return complete;
}

void FilterChain::process(float* data, int count)
{
    for (const auto& filter : m_filters)
        filter->Process(data, count);
}

void FilterChain::reset()
{
    for (const auto& filter : m_filters)
        filter->Reset();
}
