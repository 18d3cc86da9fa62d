#include "core/ChannelPipeline.h"

#include "services/GlobalConsoleWriter.h"

#include <algorithm>

FilterChain::Settings ChannelPipeline::effectiveFilters(const MontageChannel& channel,
                                                        const FilterChain::Settings& engine)
{
    FilterChain::Settings settings = engine;
    if (channel.highPass > 0) {
        settings.hpf = float(channel.highPass);
        settings.hpfOrder = channel.highPassOrder;
    }
    if (channel.lowPass > 0) {
        settings.lpf = float(channel.lowPass);
        settings.lpfOrder = channel.lowPassOrder;
    }
    if (channel.bandStop > 0)
        settings.bsf = float(channel.bandStop);
    return settings;
}

void ChannelPipeline::configure(const QList<MontageChannel>& montage, float samplingRate,
                                const FilterChain::Settings& engineFilters, bool rebuildFilters)
{
    const bool rebuild = rebuildFilters || size_t(montage.size()) != m_channels.size();
    if (rebuild)
        m_channels = std::vector<Channel>(size_t(montage.size()));
    m_requiredInputs = 0;
    QStringList unrealisable;
    for (qsizetype i = 0; i < montage.size(); ++i) {
        const MontageChannel& source = montage[i];
        Channel& channel = m_channels[size_t(i)];
        channel.input = source.group1;
        channel.reference = source.group2;
        channel.scale = float(source.scale);
        channel.offset = float(source.offset);
        m_requiredInputs = std::max({ m_requiredInputs, source.group1 + 1, source.group2 + 1 });
        if (rebuild && !channel.filters.build(effectiveFilters(source, engineFilters)))
            unrealisable.append(source.name);
    }
    if (!unrealisable.isEmpty())
        kxDebug() << QStringLiteral("Filters at or above half the sampling rate (%1 Hz) are off for: %2")
                         .arg(samplingRate / 2)
                         .arg(unrealisable.join(QStringLiteral(", ")));
    if (rebuild)
        m_quality.reset(int(m_channels.size()), samplingRate);
}

void ChannelPipeline::clear()
{
    m_channels.clear();
    m_requiredInputs = 0;
    m_quality = SignalQualityMeter();
}

bool ChannelPipeline::buildMontage(const QList<QList<float>>& block, QList<QList<float>>& montage) const
{
    if (m_requiredInputs > block.size() || m_channels.empty())
        return false;
    montage.resize(qsizetype(m_channels.size()));
    for (size_t i = 0; i < m_channels.size(); ++i) {
        const Channel& channel = m_channels[i];
        QList<float>& out = montage[qsizetype(i)];
        if (channel.input < 0) {
            out = QList<float>(block.first().size(), 0.0f);
            continue;
        }
        const QList<float>& input = block[channel.input];
        if (channel.reference < 0 && channel.scale == 1.0f) {
            out = input; // shared, not copied: the common case of a plain input channel
            continue;
        }
        const QList<float>& reference = channel.reference >= 0 ? block[channel.reference] : input;
        out.resize(input.size());
        float* values = out.data();
        const qsizetype n = std::min(input.size(), reference.size());
        for (qsizetype k = 0; k < n; ++k) {
            const float referenced = channel.reference >= 0 ? input[k] - reference[k] : input[k];
            values[k] = referenced * channel.scale;
        }
    }
    return true;
}

QList<QList<float>> ChannelPipeline::filter(const QList<QList<float>>& montage)
{
    QList<QList<float>> filtered;
    filtered.reserve(montage.size());
    for (qsizetype i = 0; i < montage.size(); ++i) {
        QList<float> values(montage[i].constData(), montage[i].constData() + montage[i].size());
        if (size_t(i) < m_channels.size()) {
            Channel& channel = m_channels[size_t(i)];
            float* data = values.data();
            const int count = int(values.size());
            channel.filters.process(data, count);
            if (channel.offset != 0.0f) {
                for (int k = 0; k < count; ++k)
                    data[k] += channel.offset;
            }
            m_quality.addSamples(int(i), montage[i].constData(), data, count);
        }
        filtered.append(std::move(values));
    }
    return filtered;
}
