#include "app/ui/SpectrumPlot.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int FrequencyDivisions = 8;
constexpr int LinearDivisions = 5;
}

SpectrumPlot::SpectrumPlot(QQuickItem* parent)
    : LinePlotItem(parent)
{
}

void SpectrumPlot::setBuffer(SpectrumBuffer* buffer)
{
    if (!replaceSource(m_buffer, buffer))
        return;
    if (buffer) {
        connect(buffer, &SpectrumBuffer::layoutChanged, this, &SpectrumPlot::onLayoutChanged);
        connect(buffer, &SpectrumBuffer::updated, this, &SpectrumPlot::scheduleRedraw);
        connect(buffer, &QObject::destroyed, this, &SpectrumPlot::onLayoutChanged);
    }
    Q_EMIT bufferChanged();
    onLayoutChanged();
}

void SpectrumPlot::onLayoutChanged()
{
    m_linesDirty = true;
    m_auto.reset();
    scheduleRedraw();
}

void SpectrumPlot::setChannels(const QList<int>& channels)
{
    if (channels == m_channels)
        return;
    m_channels = channels;
    m_linesDirty = true;
    Q_EMIT channelsChanged();
    scheduleRedraw();
}

void SpectrumPlot::setLogScale(bool log)
{
    if (log == m_logScale)
        return;
    m_logScale = log;
    Q_EMIT logScaleChanged();
    Q_EMIT shownRangeChanged();
    scheduleRedraw();
}

void SpectrumPlot::setMaxFrequency(double hz)
{
    if (!(hz > 0) || hz == m_maxFrequency)
        return;
    m_maxFrequency = hz;
    Q_EMIT maxFrequencyChanged();
    scheduleRedraw();
}

void SpectrumPlot::setMaximum(double value)
{
    if (!(value >= 0) || value == m_maximum)
        return;
    m_maximum = value;
    Q_EMIT maximumChanged();
    scheduleRedraw();
}

void SpectrumPlot::resolveLines()
{
    const int count = m_buffer ? m_buffer->channelCount() : 0;
    m_lines.clear();
    for (int c = 0; c < count && m_channels.isEmpty(); ++c)
        m_lines.push_back(c);
    for (int c : m_channels) {
        if (c >= 0 && c < count)
            m_lines.push_back(c);
    }
    m_linesDirty = false;
}

// Largest amplitude of the lines drawn, up to maxFrequency.
double SpectrumPlot::shownPeak() const
{
    float peak = 0;
    const double step = m_buffer->frequencyStep();
    for (int channel : m_lines) {
        const QList<float>& spectrum = m_buffer->last(channel);
        const qsizetype bins = std::min<qsizetype>(spectrum.size(), qsizetype(m_maxFrequency / step) + 1);
        for (qsizetype k = 0; k < bins; ++k)
            peak = spectrum[k] > peak ? spectrum[k] : peak;
    }
    return peak;
}

void SpectrumPlot::fillPicture(LinePicture& picture)
{
    if (m_linesDirty)
        resolveLines();
    const bool ready = m_buffer && m_buffer->binCount() > 0 && width() >= 1 && height() >= 1;
    picture.setLayout(ready ? int(m_lines.size()) : 0, ready ? m_buffer->binCount() : 0, QSGGeometry::DrawLineStrip);
    const double top = m_maximum > 0 ? m_maximum : ready ? m_auto.update(shownPeak()) : m_shownMaximum;
    if (top != m_shownMaximum) {
        m_shownMaximum = top;
        Q_EMIT shownRangeChanged();
    }
    // Vertices hold frequency and amplitude (or its log10); the matrix maps the axes.
    const double low = m_logScale ? std::log10(shownMinimum()) : 0.0;
    const double high = m_logScale ? std::log10(top) : top;
    const QMatrix4x4 matrix(float(width() / m_maxFrequency), 0, 0, 0,                        //
                            0, float(-height() / (high - low)), 0, float(height() * high / (high - low)), //
                            0, 0, 1, 0,                                                          //
                            0, 0, 0, 1);
    for (int i = 0; i < picture.lineCount(); ++i) {
        LinePicture::Line& line = picture.line(i);
        fillLine(line, m_lines[size_t(i)], shownMinimum());
        line.matrix = matrix;
        line.color = colorFor(m_lines[size_t(i)]);
    }
    if (showGrid())
        addGrid(picture);
}

void SpectrumPlot::fillLine(LinePicture::Line& line, int channel, double floor) const
{
    const QList<float>& spectrum = m_buffer->last(channel);
    const double step = m_buffer->frequencyStep();
    line.count = int(std::min<qsizetype>(spectrum.size(), line.vertices.size()));
    for (int k = 0; k < line.count; ++k) {
        const double a = std::isnan(spectrum[k]) ? floor : std::max<double>(spectrum[k], floor);
        line.vertices[size_t(k)].set(float(k * step), float(m_logScale ? std::log10(a) : a));
    }
}

void SpectrumPlot::addGrid(LinePicture& picture) const
{
    const auto crisp = [](double v) { return std::floor(v) + 0.5; };
    const double step = AutoMaximum::roundUp(m_maxFrequency / FrequencyDivisions);
    for (double f = step; f < m_maxFrequency - 1e-9; f += step) {
        const double x = crisp(width() * f / m_maxFrequency);
        picture.addGridLine({ x, 0 }, { x, height() });
    }
    const int rows = m_logScale ? int(LogDecades) : LinearDivisions;
    for (int i = 1; i < rows; ++i) {
        const double y = crisp(height() * i / rows);
        picture.addGridLine({ 0, y }, { width(), y });
    }
}
