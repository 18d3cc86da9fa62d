#include "app/ui/LinePicture.h"

bool LinePicture::setLayout(int lines, int capacity, QSGGeometry::DrawingMode mode)
{
    if (lines == lineCount() && capacity == m_capacity && mode == m_mode)
        return false;
    m_lines.resize(size_t(lines));
    for (Line& line : m_lines) {
        line.vertices.assign(size_t(capacity), QSGGeometry::Point2D { 0, 0 });
        line.count = 0;
    }
    m_capacity = capacity;
    m_mode = mode;
    return true;
}

void LinePicture::addGridLine(const QPointF& from, const QPointF& to)
{
    m_grid.push_back({ float(from.x()), float(from.y()) });
    m_grid.push_back({ float(to.x()), float(to.y()) });
}
