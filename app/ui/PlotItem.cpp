#include "app/ui/PlotItem.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRendererInterface>

PlotItem::PlotItem(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents, true);
}

void PlotItem::scheduleRedraw()
{
    m_dirty = true;
    polish();
}

bool PlotItem::softwareRenderer() const
{
    const QSGRendererInterface* renderer = window() ? window()->rendererInterface() : nullptr;
    return renderer && renderer->graphicsApi() == QSGRendererInterface::Software;
}

qreal PlotItem::devicePixelRatio() const
{
    return window() ? window()->effectiveDevicePixelRatio() : 1.0;
}

void PlotItem::updatePolish()
{
    if (!m_dirty)
        return;
    m_dirty = false;
    if (!preparePicture())
        return;
    ++m_framesDrawn;
    update();
    Q_EMIT framesDrawnChanged();
}

void PlotItem::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        scheduleRedraw();
}

void PlotItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange && data.window)
        scheduleRedraw();
}

QSGNode* PlotItem::imageNode(QSGNode* oldNode, const QImage& image, const QRectF& target, const QRectF& source,
                             QSGTexture::Filtering filtering)
{
    QSGTexture* texture = image.isNull() || target.isEmpty() ? nullptr : window()->createTextureFromImage(image);
    if (!texture) {
        delete oldNode;
        return nullptr;
    }
    auto* node = static_cast<QSGImageNode*>(oldNode);
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
    }
    node->setTexture(texture); // deletes the previous texture, which the node owns
    node->setFiltering(filtering);
    node->setRect(target);
    node->setSourceRect(source);
    return node;
}
