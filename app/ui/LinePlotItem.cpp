#include "app/ui/LinePlotItem.h"

#include "app/ui/LinesNode.h"

LinePlotItem::LinePlotItem(QQuickItem* parent)
    : PlotItem(parent)
{
}

void LinePlotItem::setLineColor(const QColor& color)
{
    if (color == m_lineColor)
        return;
    m_lineColor = color;
    Q_EMIT lineColorChanged();
    scheduleRedraw();
}

void LinePlotItem::setColors(const QList<QColor>& colors)
{
    if (colors == m_colors)
        return;
    m_colors = colors;
    Q_EMIT colorsChanged();
    scheduleRedraw();
}

void LinePlotItem::setGridColor(const QColor& color)
{
    if (color == m_gridColor)
        return;
    m_gridColor = color;
    Q_EMIT gridColorChanged();
    scheduleRedraw();
}

void LinePlotItem::setShowGrid(bool show)
{
    if (show == m_showGrid)
        return;
    m_showGrid = show;
    Q_EMIT showGridChanged();
    scheduleRedraw();
}

QColor LinePlotItem::colorFor(int channel) const
{
    return channel >= 0 && channel < m_colors.size() && m_colors[channel].isValid() ? m_colors[channel]
                                                                                      : m_lineColor;
}

bool LinePlotItem::preparePicture()
{
    m_software = softwareRenderer();
    m_picture.clearGrid();
    m_picture.setGridColor(m_gridColor);
    fillPicture(m_picture);
    if (m_software)
        m_image.paint(m_picture, size(), devicePixelRatio());
    return true;
}

QSGNode* LinePlotItem::updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData*)
{
    // The first sync of a new window may come before the first picture told which kind of
    // node the renderer needs; a node of the other kind is replaced.
    const bool linesNode = dynamic_cast<LinesNode*>(oldNode) != nullptr;
    if (oldNode && linesNode == m_software) {
        delete oldNode;
        oldNode = nullptr;
    }
    if (m_software)
        return imageNode(oldNode, m_image.image(), boundingRect(), QRectF(QPointF(), m_image.image().size()));
    auto* node = static_cast<LinesNode*>(oldNode);
    if (node && !node->fits(m_picture)) {
        delete node;
        node = nullptr;
    }
    if (!node)
        node = new LinesNode(m_picture);
    node->update(m_picture, boundingRect());
    return node;
}
