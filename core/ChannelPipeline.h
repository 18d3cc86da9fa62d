#pragma once

#include "dsp/FilterChain.h"
#include "dsp/MontageChannel.h"
#include "dsp/SignalQualityMeter.h"

#include <QList>

#include <vector>

// The per-block work of the engine on montage channels: forms each montage channel from its
// device inputs, runs it through its own filter chain and measures its signal quality.
class ChannelPipeline
{
public:
    // Rebuilds the channel records from the montage. Filters are rebuilt when asked or when
    // the channel count changed; otherwise the running filters keep their state.
    void configure(const QList<MontageChannel>& montage, float samplingRate,
                   const FilterChain::Settings& engineFilters, bool rebuildFilters);
    void clear();

    int channelCount() const { return int(m_channels.size()); }
    // Highest device input the montage reads, plus one.
    int requiredInputs() const { return m_requiredInputs; }

    // Montage step: false (and `montage` left alone) when the block lacks inputs the
    // montage needs.
    bool buildMontage(const QList<QList<float>>& block, QList<QList<float>>& montage) const;
    // Filters a copy of every montage channel; channels beyond the montage pass unfiltered.
    QList<QList<float>> filter(const QList<QList<float>>& montage);

    const QList<int>& qualities() const { return m_quality.qualities(); }

    // The cut-offs a channel really uses: its own where set (non-zero), else the engine's.
    static FilterChain::Settings effectiveFilters(const MontageChannel& channel,
                                                  const FilterChain::Settings& engineFilters);

private:
    struct Channel
    {
        int input = -1;
        int reference = -1;
        float scale = 1;
        float offset = 0;
        FilterChain filters;
    };

    std::vector<Channel> m_channels;
    SignalQualityMeter m_quality;
    int m_requiredInputs = 0;
};
