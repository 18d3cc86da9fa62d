#include "app/ui/SpectrogramPlot.h"

#include "app/ui/ColorMap.h"

#include <algorithm>
#include <cmath>

SpectrogramPlot::SpectrogramPlot(QQuickItem* parent)
    : PlotItem(parent)
{
}

void SpectrogramPlot::setBuffer(SpectrumBuffer* buffer)
{
    if (!replaceSource(m_buffer, buffer))
        return;
    if (buffer) {
        connect(buffer, &SpectrumBuffer::layoutChanged, this, &SpectrogramPlot::onLayoutChanged);
        connect(buffer, &SpectrumBuffer::spectrogramChannelChanged, this, &SpectrogramPlot::onLayoutChanged);
        connect(buffer, &SpectrumBuffer::updated, this, &SpectrogramPlot::scheduleRedraw);
        connect(buffer, &QObject::destroyed, this, &SpectrogramPlot::onLayoutChanged);
    }
    Q_EMIT bufferChanged();
    onLayoutChanged();
}

void SpectrogramPlot::onLayoutChanged()
{
    m_auto.reset();
    scheduleRedraw();
}

void SpectrogramPlot::setLogScale(bool log)
{
    if (log == m_logScale)
        return;
    m_logScale = log;
    Q_EMIT logScaleChanged();
    scheduleRedraw();
}

void SpectrogramPlot::setMaxFrequency(double hz)
{
    if (!(hz > 0) || hz == m_maxFrequency)
        return;
    m_maxFrequency = hz;
    Q_EMIT maxFrequencyChanged();
    scheduleRedraw();
}

bool SpectrogramPlot::preparePicture()
{
    const int binCount = m_buffer ? m_buffer->binCount() : 0;
    if (binCount == 0 || m_buffer->spectrogramRows() < 1) {
        m_image = QImage();
        return true;
    }
    // Enough bins that the top bin's upper edge reaches maxFrequency.
    const int bins = std::clamp(int(std::ceil(m_maxFrequency / m_buffer->frequencyStep() + 0.5)), 1, binCount);
    const QSize size(m_buffer->spectrogramRows(), bins);
    if (m_image.size() != size)
        m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    paintColumns(bins, m_auto.update(heldPeak(bins)));
    placeImage(bins);
    return true;
}

double SpectrogramPlot::heldPeak(int bins) const
{
    float peak = 0;
    for (int age = 0; age < m_buffer->spectrogramFilled(); ++age) {
        const float* row = m_buffer->spectrogramRow(age);
        for (int k = 0; k < bins; ++k)
            peak = row[k] > peak ? row[k] : peak;
    }
    return peak;
}

void SpectrogramPlot::paintColumns(int bins, double top)
{
    const int columns = m_image.width();
    const double low = m_logScale ? std::log10(top) - LogDecades : 0.0;
    const double range = m_logScale ? LogDecades : top;
    for (int x = 0; x < columns; ++x) {
        const float* row = m_buffer->spectrogramRow(columns - 1 - x); // newest on the right
        for (int k = 0; k < bins; ++k) {
            auto* pixel = reinterpret_cast<QRgb*>(m_image.scanLine(bins - 1 - k)) + x;
            const double value = row ? (m_logScale ? std::log10(double(row[k])) : double(row[k])) : NAN;
            *pixel = std::isnan(value) ? 0u : ColorMap::at((value - low) / range);
        }
    }
}

// Bin k is centred on k * step: the image spans from half a bin below 0 Hz to half a bin
// above the top bin. Show 0 Hz .. maxFrequency of it, at the matching height of the item.
void SpectrogramPlot::placeImage(int bins)
{
    const double step = m_buffer->frequencyStep();
    const double imageTop = (bins - 0.5) * step;
    const double shownTop = std::min(imageTop, m_maxFrequency);
    m_source = QRectF(0, (imageTop - shownTop) / step, m_image.width(), shownTop / step);
    const double shownHeight = height() * shownTop / m_maxFrequency;
    m_target = QRectF(0, height() - shownHeight, width(), shownHeight);
}

QSGNode* SpectrogramPlot::updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData*)
{
    return imageNode(oldNode, m_image, m_target, m_source, QSGTexture::Linear);
}
