#pragma once

#include "app/ui/AutoMaximum.h"
#include "app/ui/LinePlotItem.h"
#include "app/ui/SpectrumBuffer.h"

#include <QPointer>

#include <cmath>

#include <vector>

// The last amplitude spectra of a few channels, overlaid, from 0 Hz to maxFrequency. The
// amplitude axis runs from 0 (linear) or shownMaximum / 1000 (log) to shownMaximum, with
// five (linear) or three decade (log) grid divisions, and one frequency division per
// 1, 2, 5, 10 ... Hz step that gives about eight of them.
class SpectrumPlot : public LinePlotItem
{
    Q_OBJECT
    Q_PROPERTY(SpectrumBuffer* buffer READ buffer WRITE setBuffer NOTIFY bufferChanged)
    // Channels drawn; empty = all.
    Q_PROPERTY(QList<int> channels READ channels WRITE setChannels NOTIFY channelsChanged)
    Q_PROPERTY(bool logScale READ logScale WRITE setLogScale NOTIFY logScaleChanged)
    Q_PROPERTY(double maxFrequency READ maxFrequency WRITE setMaxFrequency NOTIFY maxFrequencyChanged)
    // Top of the amplitude axis; 0 = automatic.
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum NOTIFY maximumChanged)
    // The amplitude axis of the current picture, for the labels around the plot.
    Q_PROPERTY(double shownMaximum READ shownMaximum NOTIFY shownRangeChanged)
    Q_PROPERTY(double shownMinimum READ shownMinimum NOTIFY shownRangeChanged)
public:
    static constexpr double LogDecades = 3;

    explicit SpectrumPlot(QQuickItem* parent = nullptr);

    SpectrumBuffer* buffer() const { return m_buffer; }
    void setBuffer(SpectrumBuffer* buffer);
    QList<int> channels() const { return m_channels; }
    void setChannels(const QList<int>& channels);
    bool logScale() const { return m_logScale; }
    void setLogScale(bool log);
    double maxFrequency() const { return m_maxFrequency; }
    void setMaxFrequency(double hz);
    double maximum() const { return m_maximum; }
    void setMaximum(double value);
    double shownMaximum() const { return m_shownMaximum; }
    double shownMinimum() const { return m_logScale ? m_shownMaximum / std::pow(10.0, LogDecades) : 0.0; }

Q_SIGNALS:
    void bufferChanged();
    void channelsChanged();
    void logScaleChanged();
    void maxFrequencyChanged();
    void maximumChanged();
    void shownRangeChanged();

protected:
    void fillPicture(LinePicture& picture) override;

private:
    void onLayoutChanged();
    void resolveLines();
    double shownPeak() const;
    void fillLine(LinePicture::Line& line, int channel, double floor) const;
    void addGrid(LinePicture& picture) const;

    QPointer<SpectrumBuffer> m_buffer;
    QList<int> m_channels;
    bool m_logScale = false;
    double m_maxFrequency = 40;
    double m_maximum = 0;
    double m_shownMaximum = 1;
    AutoMaximum m_auto;
    std::vector<int> m_lines; // channel of each line
    bool m_linesDirty = true;
};
