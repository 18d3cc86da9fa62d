#pragma once

#include <QImage>
#include <QPointF>

#include <vector>

class LinePicture;

// Paints a LinePicture with QPainter, for the software renderer, which does not draw custom
// geometry. The same vertices and matrices give the same picture as the scene graph.
class LinesImage
{
public:
    // Paints into an image of `size` (item units) at the given pixel ratio.
    void paint(const LinePicture& picture, const QSizeF& size, qreal devicePixelRatio);
    const QImage& image() const { return m_image; }

private:
    std::vector<QPointF> m_points;
    QImage m_image;
};
