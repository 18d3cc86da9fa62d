#pragma once

#include "app/ui/LinePicture.h"
#include "app/ui/LinesImage.h"
#include "app/ui/PlotItem.h"

#include <QColor>
#include <QList>

// Base of the plots made of lines: colours and grid, and the drawing of a LinePicture either
// as scene graph geometry or, under the software renderer, as an image.
class LinePlotItem : public PlotItem
{
    Q_OBJECT
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor NOTIFY lineColorChanged)
    // Colour per channel index; channels beyond the list use lineColor.
    Q_PROPERTY(QList<QColor> colors READ colors WRITE setColors NOTIFY colorsChanged)
    Q_PROPERTY(QColor gridColor READ gridColor WRITE setGridColor NOTIFY gridColorChanged)
    Q_PROPERTY(bool showGrid READ showGrid WRITE setShowGrid NOTIFY showGridChanged)
public:
    explicit LinePlotItem(QQuickItem* parent = nullptr);

    QColor lineColor() const { return m_lineColor; }
    void setLineColor(const QColor& color);
    QList<QColor> colors() const { return m_colors; }
    void setColors(const QList<QColor>& colors);
    QColor gridColor() const { return m_gridColor; }
    void setGridColor(const QColor& color);
    bool showGrid() const { return m_showGrid; }
    void setShowGrid(bool show);

Q_SIGNALS:
    void lineColorChanged();
    void colorsChanged();
    void gridColorChanged();
    void showGridChanged();

protected:
    QColor colorFor(int channel) const;
    // Fills the lines and, when showGrid is set, the grid of the picture.
    virtual void fillPicture(LinePicture& picture) = 0;

    bool preparePicture() final;
    QSGNode* updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData* data) override;

private:
    QColor m_lineColor = QColor(0x20, 0x60, 0xc0);
    QList<QColor> m_colors;
    QColor m_gridColor = QColor(0x80, 0x80, 0x80, 0x60);
    bool m_showGrid = true;
    LinePicture m_picture;
    LinesImage m_image;
    bool m_software = false;
};
