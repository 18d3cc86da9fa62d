#pragma once

#include <QColor>
#include <QMatrix4x4>
#include <QSGGeometry>

#include <vector>

// What a line plot shows, apart from how it reaches the screen: grid segments in item
// coordinates, and lines whose vertices are in data units with the matrix that maps each line
// into the item. The scene graph and the software image both draw from it.
class LinePicture
{
public:
    struct Line
    {
        std::vector<QSGGeometry::Point2D> vertices; // fixed capacity
        int count = 0;                              // vertices in use
        QMatrix4x4 matrix;
        QColor color;
    };

    // Reallocates only when the shape changes; returns whether it did.
    bool setLayout(int lines, int capacity, QSGGeometry::DrawingMode mode);
    int lineCount() const { return int(m_lines.size()); }
    int capacity() const { return m_capacity; }
    QSGGeometry::DrawingMode mode() const { return m_mode; }
    Line& line(int i) { return m_lines[size_t(i)]; }
    const Line& line(int i) const { return m_lines[size_t(i)]; }

    // Grid segments (vertex pairs) in item coordinates.
    void clearGrid() { m_grid.clear(); }
    void addGridLine(const QPointF& from, const QPointF& to);
    const std::vector<QSGGeometry::Point2D>& grid() const { return m_grid; }
    QColor gridColor() const { return m_gridColor; }
    void setGridColor(const QColor& color) { m_gridColor = color; }

private:
    std::vector<Line> m_lines;
    int m_capacity = 0;
    QSGGeometry::DrawingMode m_mode = QSGGeometry::DrawLines;
    std::vector<QSGGeometry::Point2D> m_grid;
    QColor m_gridColor;
};
