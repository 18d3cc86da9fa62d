#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickItem>
#include <QSGTexture>

class QSGNode;

// Base of the plot items. A change or new data only asks for a picture; the picture is
// prepared once per frame in updatePolish (GUI thread, before the scene graph sync), and
// updatePaintNode only hands it to the scene graph.
class PlotItem : public QQuickItem
{
    Q_OBJECT
    // Pictures handed to the scene graph; each is followed by one updatePaintNode.
    Q_PROPERTY(int framesDrawn READ framesDrawn NOTIFY framesDrawnChanged)
public:
    explicit PlotItem(QQuickItem* parent = nullptr);

    int framesDrawn() const { return m_framesDrawn; }

Q_SIGNALS:
    void framesDrawnChanged();

protected:
    // Any number of calls within one frame give one new picture.
    void scheduleRedraw();
    // Stops listening to the current data source and takes `source`; false when it is the same.
    // The caller connects the new source's signals; a destroyed source reads as null.
    template<typename Source>
    bool replaceSource(QPointer<Source>& current, Source* source)
    {
        if (source == current)
            return false;
        if (current)
            disconnect(current, nullptr, this, nullptr);
        current = source;
        return true;
    }
    // Sets a property's member; true when the value changed.
    template<typename T>
    static bool assign(T& member, const T& value)
    {
        if (member == value)
            return false;
        member = value;
        return true;
    }
    // Prepares the next picture; false when there is nothing new to show.
    virtual bool preparePicture() = 0;
    // The software renderer draws no custom geometry: such plots show an image instead.
    bool softwareRenderer() const;
    qreal devicePixelRatio() const;
    // An image node showing `source` (texture pixels) of `image` in `target`; reuses oldNode.
    QSGNode* imageNode(QSGNode* oldNode, const QImage& image, const QRectF& target, const QRectF& source,
                       QSGTexture::Filtering filtering = QSGTexture::Nearest);

    void updatePolish() override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    bool m_dirty = false;
    int m_framesDrawn = 0;
};
