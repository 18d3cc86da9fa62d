#include "app/ui/LinesImage.h"

#include "app/ui/LinePicture.h"

#include <QPainter>
#include <QPen>

void LinesImage::paint(const LinePicture& picture, const QSizeF& size, qreal devicePixelRatio)
{
    const QSize pixels = (size * devicePixelRatio).toSize();
    if (pixels.isEmpty()) {
        m_image = QImage();
        return;
    }
    if (m_image.size() != pixels)
        m_image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    m_image.setDevicePixelRatio(devicePixelRatio);
    m_image.fill(Qt::transparent);
    QPainter painter(&m_image);
    QPen pen(picture.gridColor(), 1);
    pen.setCosmetic(true);
    const auto draw = [&](const std::vector<QSGGeometry::Point2D>& vertices, int count, const QTransform& map,
                          bool strip) {
        if (m_points.size() < size_t(count))
            m_points.resize(size_t(count));
        for (int i = 0; i < count; ++i)
            m_points[size_t(i)] = map.map(QPointF(vertices[size_t(i)].x, vertices[size_t(i)].y));
        painter.setPen(pen);
        if (strip)
            painter.drawPolyline(m_points.data(), count);
        else
            painter.drawLines(m_points.data(), count / 2);
    };
    draw(picture.grid(), int(picture.grid().size()), QTransform(), false);
    for (int i = 0; i < picture.lineCount(); ++i) {
        const LinePicture::Line& line = picture.line(i);
        pen.setColor(line.color);
        draw(line.vertices, line.count, line.matrix.toTransform(), picture.mode() == QSGGeometry::DrawLineStrip);
    }
}
