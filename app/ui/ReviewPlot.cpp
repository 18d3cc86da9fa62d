#include "app/ui/ReviewPlot.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int MaxColumns = 16384;
}

ReviewPlot::ReviewPlot(QQuickItem* parent)
    : LinePlotItem(parent)
{
}

void ReviewPlot::setBuffer(TraceBuffer* buffer)
{
    if (!replaceSource(m_buffer, buffer))
        return;
    if (buffer) {
        connect(buffer, &TraceBuffer::layoutChanged, this, &ReviewPlot::scheduleRedraw);
        connect(buffer, &TraceBuffer::appended, this, &ReviewPlot::scheduleRedraw);
        connect(buffer, &QObject::destroyed, this, &ReviewPlot::scheduleRedraw);
    }
    Q_EMIT bufferChanged();
    scheduleRedraw();
}

void ReviewPlot::setMicrovoltsPerDivision(double microvolts)
{
    if (microvolts > 0 && assign(m_microvoltsPerDivision, microvolts)) {
        Q_EMIT microvoltsPerDivisionChanged();
        scheduleRedraw();
    }
}

void ReviewPlot::setTimeDivisions(int divisions)
{
    if (divisions > 0 && assign(m_timeDivisions, divisions)) {
        Q_EMIT timeDivisionsChanged();
        scheduleRedraw();
    }
}

void ReviewPlot::fillPicture(LinePicture& picture)
{
    const qint64 span = m_buffer ? m_buffer->written() : 0;
    const bool ready = span > 0 && m_buffer->channelCount() > 0 && width() >= 1 && height() >= 1;
    const int lanes = ready ? m_buffer->channelCount() : 0;
    const int columns = ready ? std::clamp(int(std::ceil(width() * devicePixelRatio())), 1, MaxColumns) : 1;
    m_geometry.setLayout(columns, ready ? std::min<qint64>(span, m_buffer->capacity()) : 1);
    picture.setLayout(lanes, m_geometry.capacity(), QSGGeometry::DrawLines);
    for (int lane = 0; lane < lanes; ++lane) {
        LinePicture::Line& line = picture.line(lane);
        line.count = m_geometry.fill(*m_buffer, lane, span, line.vertices.data());
        line.matrix = laneMatrix(lane, lanes);
        line.color = colorFor(lane);
    }
    if (showGrid())
        addGrid(picture, lanes);
}

// Maps column index and microvolts of one lane to item coordinates; 0 µV at the lane's middle.
QMatrix4x4 ReviewPlot::laneMatrix(int lane, int lanes) const
{
    const double columnWidth = width() / m_geometry.columns();
    const double laneHeight = height() / std::max(lanes, 1);
    const double pixelsPerUnit = laneHeight / m_microvoltsPerDivision;
    const double zeroAt = laneHeight * (lane + 0.5);
    return QMatrix4x4(float(columnWidth), 0, 0, float(columnWidth / 2), //
                      0, float(-pixelsPerUnit), 0, float(zeroAt),       //
                      0, 0, 1, 0,                                       //
                      0, 0, 0, 1);
}

void ReviewPlot::addGrid(LinePicture& picture, int lanes) const
{
    const auto crisp = [](double v) { return std::floor(v) + 0.5; };
    for (int i = 1; i < lanes; ++i) {
        const double y = crisp(height() * i / lanes);
        picture.addGridLine({ 0, y }, { width(), y });
    }
    for (int i = 1; i < m_timeDivisions; ++i) {
        const double x = crisp(width() * i / m_timeDivisions);
        picture.addGridLine({ x, 0 }, { x, height() });
    }
}
