#pragma once

#include "app/ui/LinePlotItem.h"
#include "app/ui/ScrollClock.h"
#include "app/ui/TraceBuffer.h"
#include "app/ui/TraceGeometry.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <vector>

// Scrolling traces of a TraceBuffer, newest sample at the right edge. Stacked: one lane per
// channel, one division (microvoltsPerDivision) being a lane's height. Overlaid: all channels
// in one area from minimum to maximum. Grid: lane borders (or ten value divisions), and one
// time division per second up to 20 s, ten divisions beyond.
class TracePlot : public LinePlotItem
{
    Q_OBJECT
    Q_PROPERTY(TraceBuffer* buffer READ buffer WRITE setBuffer NOTIFY bufferChanged)
    Q_PROPERTY(double timeBase READ timeBase WRITE setTimeBase NOTIFY timeBaseChanged)
    Q_PROPERTY(double microvoltsPerDivision READ microvoltsPerDivision WRITE setMicrovoltsPerDivision
                   NOTIFY microvoltsPerDivisionChanged)
    Q_PROPERTY(bool autoScale READ autoScale WRITE setAutoScale NOTIFY autoScaleChanged)
    Q_PROPERTY(QList<int> visibleChannels READ visibleChannels WRITE setVisibleChannels
                   NOTIFY visibleChannelsChanged)
    Q_PROPERTY(bool frozen READ frozen WRITE setFrozen NOTIFY frozenChanged)
    Q_PROPERTY(bool stacked READ stacked WRITE setStacked NOTIFY stackedChanged)
    Q_PROPERTY(double minimum READ minimum WRITE setMinimum NOTIFY minimumChanged)
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum NOTIFY maximumChanged)
public:
    explicit TracePlot(QQuickItem* parent = nullptr);

    TraceBuffer* buffer() const { return m_buffer; }
    void setBuffer(TraceBuffer* buffer);
    double timeBase() const { return m_timeBase; }
    void setTimeBase(double seconds);
    double microvoltsPerDivision() const { return m_microvoltsPerDivision; }
    void setMicrovoltsPerDivision(double microvolts);
    bool autoScale() const { return m_autoScale; }
    void setAutoScale(bool automatic);
    QList<int> visibleChannels() const { return m_visibleChannels; }
    void setVisibleChannels(const QList<int>& channels);
    bool frozen() const { return m_frozen; }
    void setFrozen(bool frozen);
    bool stacked() const { return m_stacked; }
    void setStacked(bool stacked);
    double minimum() const { return m_minimum; }
    void setMinimum(double value);
    double maximum() const { return m_maximum; }
    void setMaximum(double value);

    // Peak-to-peak (sample units) of `channel` in the current picture; 0 when not shown.
    Q_INVOKABLE double shownPeakToPeak(int channel) const;

Q_SIGNALS:
    void bufferChanged();
    void timeBaseChanged();
    void microvoltsPerDivisionChanged();
    void autoScaleChanged();
    void visibleChannelsChanged();
    void frozenChanged();
    void stackedChanged();
    void minimumChanged();
    void maximumChanged();

protected:
    void fillPicture(LinePicture& picture) override;

private:
    void onLayoutChanged();
    void onAppended();
    void onFrameDue();
    void resolveLanes();
    QMatrix4x4 laneMatrix(int lane, float low, float high) const;
    void addGrid(LinePicture& picture) const;

    QPointer<TraceBuffer> m_buffer;
    double m_timeBase = 10;
    double m_microvoltsPerDivision = 100;
    bool m_autoScale = false;
    QList<int> m_visibleChannels;
    bool m_frozen = false;
    bool m_stacked = true;
    double m_minimum = 0;
    double m_maximum = 100;

    TraceGeometry m_geometry;
    std::vector<int> m_lanes;         // channel of each lane, top to bottom
    std::vector<double> m_peakToPeak; // per channel
    bool m_lanesDirty = true;
    qint64 m_shownEnd = 0;  // end of the sample window in the current picture
    qint64 m_frozenEnd = 0;
    ScrollClock m_clock;
    QElapsedTimer m_time;
    QTimer m_frames;
};
