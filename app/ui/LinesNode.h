#pragma once

#include <QSGClipNode>

#include <vector>

class LinePicture;
class QSGGeometryNode;
class QSGTransformNode;

// The scene graph side of a LinePicture: one flat-colour geometry node per line under its own
// transform node, and one for the grid, clipped to the item. Vertex buffers keep the capacity
// they were built with; a frame only copies vertices and matrices into them.
class LinesNode : public QSGClipNode
{
public:
    explicit LinesNode(const LinePicture& picture);

    // Whether the node was built for a picture of this shape.
    bool fits(const LinePicture& picture) const;
    void update(const LinePicture& picture, const QRectF& bounds);

private:
    void updateGrid(const LinePicture& picture);

    QSGGeometry m_clip;
    QSGGeometryNode* m_grid;
    std::vector<QSGTransformNode*> m_transforms;
    std::vector<QSGGeometryNode*> m_lines;
    int m_capacity;
    QSGGeometry::DrawingMode m_mode;
};
