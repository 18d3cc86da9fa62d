#include "app/ui/TracePlot.h"

#include <QQuickWindow>

#include <algorithm>
#include <cmath>

namespace {
constexpr int MaxColumns = 16384;
constexpr int FrameIntervalMs = 25; // 40 pictures per second: smooth, and affordable on a software renderer
constexpr double AutoScaleFill = 0.9; // share of the lane that the auto-scaled trace spans

}

TracePlot::TracePlot(QQuickItem* parent)
    : LinePlotItem(parent)
{
    m_time.start();
    // While data streams the traces glide: a new picture at the display's pace, which the
    // scene graph coalesces to one per frame. Without a vertical sync (a virtual display)
    // the timer alone keeps it from drawing as fast as the processor allows.
    m_frames.setTimerType(Qt::PreciseTimer);
    m_frames.setInterval(FrameIntervalMs);
    connect(&m_frames, &QTimer::timeout, this, &TracePlot::onFrameDue);
}

void TracePlot::onFrameDue()
{
    if (!m_clock.isLive(double(m_time.nsecsElapsed()) / 1e6)) {
        m_frames.stop();
        scheduleRedraw(); // the final picture shows every sample
        return;
    }
    if (!m_frozen && isVisible())
        scheduleRedraw();
}

void TracePlot::setBuffer(TraceBuffer* buffer)
{
    if (!replaceSource(m_buffer, buffer))
        return;
    if (buffer) {
        connect(buffer, &TraceBuffer::layoutChanged, this, &TracePlot::onLayoutChanged);
        connect(buffer, &TraceBuffer::appended, this, &TracePlot::onAppended);
        connect(buffer, &QObject::destroyed, this, &TracePlot::onLayoutChanged);
    }
    Q_EMIT bufferChanged();
    onLayoutChanged();
}

void TracePlot::onLayoutChanged()
{
    m_lanesDirty = true;
    m_frozenEnd = m_buffer ? m_buffer->written() : 0;
    m_clock.reset();
    scheduleRedraw();
}

void TracePlot::onAppended()
{
    m_clock.arrived(m_buffer->written(), double(m_time.nsecsElapsed()) / 1e6);
    if (!m_frames.isActive())
        m_frames.start();
    if (!m_frozen)
        scheduleRedraw();
}

void TracePlot::setTimeBase(double seconds)
{
    if (seconds > 0 && assign(m_timeBase, seconds)) {
        Q_EMIT timeBaseChanged();
        scheduleRedraw();
    }
}

void TracePlot::setMicrovoltsPerDivision(double microvolts)
{
    if (microvolts > 0 && assign(m_microvoltsPerDivision, microvolts)) {
        Q_EMIT microvoltsPerDivisionChanged();
        scheduleRedraw();
    }
}

void TracePlot::setAutoScale(bool automatic)
{
    if (assign(m_autoScale, automatic)) {
        Q_EMIT autoScaleChanged();
        scheduleRedraw();
    }
}

void TracePlot::setVisibleChannels(const QList<int>& channels)
{
    if (assign(m_visibleChannels, channels)) {
        m_lanesDirty = true;
        Q_EMIT visibleChannelsChanged();
        scheduleRedraw();
    }
}

void TracePlot::setFrozen(bool frozen)
{
    if (assign(m_frozen, frozen)) {
        // The picture on screen is the one that stays.
        m_frozenEnd = framesDrawn() > 0 ? m_shownEnd : m_buffer ? m_buffer->written() : 0;
        Q_EMIT frozenChanged();
        scheduleRedraw();
    }
}

void TracePlot::setStacked(bool stacked)
{
    if (assign(m_stacked, stacked)) {
        Q_EMIT stackedChanged();
        scheduleRedraw();
    }
}

void TracePlot::setMinimum(double value)
{
    if (assign(m_minimum, value)) {
        Q_EMIT minimumChanged();
        scheduleRedraw();
    }
}

void TracePlot::setMaximum(double value)
{
    if (assign(m_maximum, value)) {
        Q_EMIT maximumChanged();
        scheduleRedraw();
    }
}

double TracePlot::shownPeakToPeak(int channel) const
{
    return channel >= 0 && size_t(channel) < m_peakToPeak.size() ? m_peakToPeak[size_t(channel)] : 0.0;
}

void TracePlot::resolveLanes()
{
    const int channels = m_buffer ? m_buffer->channelCount() : 0;
    m_lanes.clear();
    for (int c = 0; c < channels && m_visibleChannels.isEmpty(); ++c)
        m_lanes.push_back(c);
    for (int c : m_visibleChannels) {
        if (c >= 0 && c < channels)
            m_lanes.push_back(c);
    }
    m_peakToPeak.assign(size_t(channels), 0.0);
    m_lanesDirty = false;
}

void TracePlot::fillPicture(LinePicture& picture)
{
    if (m_lanesDirty)
        resolveLanes();
    const bool ready = m_buffer && m_buffer->sampleRate() > 0 && width() >= 1 && height() >= 1;
    const int columns = ready ? std::clamp(int(std::ceil(width() * devicePixelRatio())), 1, MaxColumns) : 1;
    const qint64 span = ready ? std::max<qint64>(1, std::llround(m_timeBase * m_buffer->sampleRate())) : 1;
    m_geometry.setLayout(columns, span);
    picture.setLayout(ready ? int(m_lanes.size()) : 0, m_geometry.capacity(), QSGGeometry::DrawLines);
    m_shownEnd = !ready  ? 0
        : m_frozen       ? m_frozenEnd
                         : m_clock.endAt(double(m_time.nsecsElapsed()) / 1e6, m_buffer->sampleRate(), m_buffer->written());
    for (int lane = 0; lane < picture.lineCount(); ++lane) {
        const int channel = m_lanes[size_t(lane)];
        LinePicture::Line& line = picture.line(lane);
        line.count = m_geometry.fill(*m_buffer, channel, m_shownEnd, line.vertices.data());
        const float low = m_geometry.minimum(), high = m_geometry.maximum();
        m_peakToPeak[size_t(channel)] = std::isnan(low) ? 0.0 : double(high) - low;
        line.matrix = laneMatrix(lane, low, high);
        line.color = colorFor(channel);
    }
    if (showGrid())
        addGrid(picture);
}

// Maps column index and sample value of one lane to item coordinates.
QMatrix4x4 TracePlot::laneMatrix(int lane, float low, float high) const
{
    const double columnWidth = width() / m_geometry.columns();
    double pixelsPerUnit, zeroAt;
    if (m_stacked) {
        const double laneHeight = height() / std::max<size_t>(m_lanes.size(), 1);
        const bool automatic = m_autoScale && high > low;
        const double centre = automatic ? (double(low) + high) / 2 : 0.0;
        pixelsPerUnit = automatic ? AutoScaleFill * laneHeight / (double(high) - low)
                                  : laneHeight / m_microvoltsPerDivision;
        zeroAt = laneHeight * (lane + 0.5) + centre * pixelsPerUnit;
    } else {
        const double range = m_maximum > m_minimum ? m_maximum - m_minimum : 1.0;
        pixelsPerUnit = height() / range;
        zeroAt = height() + m_minimum * pixelsPerUnit;
    }
    return QMatrix4x4(float(columnWidth), 0, 0, float(columnWidth / 2), //
                      0, float(-pixelsPerUnit), 0, float(zeroAt),       //
                      0, 0, 1, 0,                                       //
                      0, 0, 0, 1);
}

void TracePlot::addGrid(LinePicture& picture) const
{
    // Half-pixel positions keep one-pixel grid lines sharp.
    const auto crisp = [](double v) { return std::floor(v) + 0.5; };
    const int rows = m_stacked ? int(m_lanes.size()) : 10;
    for (int i = 1; i < rows; ++i) {
        const double y = crisp(height() * i / rows);
        picture.addGridLine({ 0, y }, { width(), y });
    }
    const int divisions = m_timeBase <= 20 ? std::max(1, int(std::lround(m_timeBase))) : 10;
    for (int i = 1; i < divisions; ++i) {
        const double x = crisp(width() * i / divisions);
        picture.addGridLine({ x, 0 }, { x, height() });
    }
}
