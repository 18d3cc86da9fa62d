#include "app/ui/LinesNode.h"

#include "app/ui/LinePicture.h"

#include <QSGFlatColorMaterial>
#include <QSGGeometryNode>
#include <QSGTransformNode>

#include <algorithm>
#include <cstring>

namespace {
QSGGeometryNode* lineNode(int capacity, QSGGeometry::DrawingMode mode)
{
    auto* geometry = new QSGGeometry(QSGGeometry::defaultAttributes_Point2D(), capacity);
    geometry->setDrawingMode(mode);
    geometry->setLineWidth(1);
    geometry->setVertexDataPattern(QSGGeometry::StreamPattern);
    auto* node = new QSGGeometryNode;
    node->setGeometry(geometry);
    node->setMaterial(new QSGFlatColorMaterial);
    node->setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
    return node;
}

void setColor(QSGGeometryNode* node, const QColor& color)
{
    auto* material = static_cast<QSGFlatColorMaterial*>(node->material());
    if (material->color() != color) {
        material->setColor(color);
        node->markDirty(QSGNode::DirtyMaterial);
    }
}
}

LinesNode::LinesNode(const LinePicture& picture)
    : m_clip(QSGGeometry::defaultAttributes_Point2D(), 4)
    , m_grid(lineNode(0, QSGGeometry::DrawLines))
    , m_capacity(picture.capacity())
    , m_mode(picture.mode())
{
    setGeometry(&m_clip);
    setIsRectangular(true);
    appendChildNode(m_grid);
    for (int i = 0; i < picture.lineCount(); ++i) {
        m_transforms.push_back(new QSGTransformNode);
        m_lines.push_back(lineNode(m_capacity, m_mode));
        m_transforms.back()->appendChildNode(m_lines.back());
        appendChildNode(m_transforms.back());
    }
}

bool LinesNode::fits(const LinePicture& picture) const
{
    return picture.lineCount() == int(m_lines.size()) && picture.capacity() == m_capacity
           && picture.mode() == m_mode;
}

void LinesNode::update(const LinePicture& picture, const QRectF& bounds)
{
    if (clipRect() != bounds) {
        QSGGeometry::updateRectGeometry(&m_clip, bounds);
        setClipRect(bounds);
        markDirty(DirtyGeometry);
    }
    updateGrid(picture);
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const LinePicture::Line& line = picture.line(int(i));
        QSGGeometry* geometry = m_lines[i]->geometry();
        auto* vertices = geometry->vertexDataAsPoint2D();
        if (line.count > 0)
            std::memcpy(vertices, line.vertices.data(), size_t(line.count) * sizeof(*vertices));
        // The buffer keeps its size: the unused tail repeats one point, which draws nothing
        // as lines or as the end of a strip; with no vertex at all it sits far outside.
        const QSGGeometry::Point2D rest = line.count > 0 ? vertices[line.count - 1]
                                                         : QSGGeometry::Point2D { -1e6f, -1e6f };
        std::fill(vertices + line.count, vertices + m_capacity, rest);
        m_lines[i]->markDirty(DirtyGeometry);
        setColor(m_lines[i], line.color);
        m_transforms[i]->setMatrix(line.matrix);
    }
}

void LinesNode::updateGrid(const LinePicture& picture)
{
    QSGGeometry* geometry = m_grid->geometry();
    const int count = int(picture.grid().size());
    if (geometry->vertexCount() != count)
        geometry->allocate(count); // only when the size or the layout changes
    if (count > 0)
        std::memcpy(geometry->vertexDataAsPoint2D(), picture.grid().data(),
                    size_t(count) * sizeof(QSGGeometry::Point2D));
    m_grid->markDirty(DirtyGeometry);
    setColor(m_grid, picture.gridColor());
}
