#pragma once

#include "app/ui/AutoMaximum.h"
#include "app/ui/PlotItem.h"
#include "app/ui/SpectrumBuffer.h"

#include <QImage>
#include <QPointer>

// The spectrogram ring of a SpectrumBuffer: time from left (oldest) to right (newest), one
// column per spectrum, frequency from 0 Hz at the bottom to maxFrequency at the top, amplitude
// as colour from dark blue to yellow. The colour scale tops out at an automatic maximum; in log
// scale it spans LogDecades below it. Drawn as an image under every renderer.
class SpectrogramPlot : public PlotItem
{
    Q_OBJECT
    Q_PROPERTY(SpectrumBuffer* buffer READ buffer WRITE setBuffer NOTIFY bufferChanged)
    Q_PROPERTY(bool logScale READ logScale WRITE setLogScale NOTIFY logScaleChanged)
    Q_PROPERTY(double maxFrequency READ maxFrequency WRITE setMaxFrequency NOTIFY maxFrequencyChanged)
public:
    static constexpr double LogDecades = 2;

    explicit SpectrogramPlot(QQuickItem* parent = nullptr);

    SpectrumBuffer* buffer() const { return m_buffer; }
    void setBuffer(SpectrumBuffer* buffer);
    bool logScale() const { return m_logScale; }
    void setLogScale(bool log);
    double maxFrequency() const { return m_maxFrequency; }
    void setMaxFrequency(double hz);

Q_SIGNALS:
    void bufferChanged();
    void logScaleChanged();
    void maxFrequencyChanged();

protected:
    bool preparePicture() override;
    QSGNode* updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData* data) override;

private:
    void onLayoutChanged();
    double heldPeak(int bins) const;
    void paintColumns(int bins, double top);
    void placeImage(int bins);

    QPointer<SpectrumBuffer> m_buffer;
    bool m_logScale = false;
    double m_maxFrequency = 40;
    AutoMaximum m_auto;
    QImage m_image;   // one column per spectrogram row, one image row per bin, highest bin on top
    QRectF m_source;  // part of the image from 0 Hz to maxFrequency, in image pixels
    QRectF m_target;  // where that part goes in the item
};
