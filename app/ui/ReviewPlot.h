#pragma once

#include "app/ui/LinePlotItem.h"
#include "app/ui/TraceBuffer.h"
#include "app/ui/TraceGeometry.h"

#include <QPointer>

// A still window of a record: every channel of the buffer in its own lane, the whole buffer
// across the width (min/max per pixel column), one lane height per microvoltsPerDivision.
// Redrawn when the buffer is refilled, never by a clock.
class ReviewPlot : public LinePlotItem
{
    Q_OBJECT
    Q_PROPERTY(TraceBuffer* buffer READ buffer WRITE setBuffer NOTIFY bufferChanged)
    Q_PROPERTY(double microvoltsPerDivision READ microvoltsPerDivision WRITE setMicrovoltsPerDivision
                   NOTIFY microvoltsPerDivisionChanged)
    // Vertical grid lines split the width into this many time divisions.
    Q_PROPERTY(int timeDivisions READ timeDivisions WRITE setTimeDivisions NOTIFY timeDivisionsChanged)
public:
    explicit ReviewPlot(QQuickItem* parent = nullptr);

    TraceBuffer* buffer() const { return m_buffer; }
    void setBuffer(TraceBuffer* buffer);
    double microvoltsPerDivision() const { return m_microvoltsPerDivision; }
    void setMicrovoltsPerDivision(double microvolts);
    int timeDivisions() const { return m_timeDivisions; }
    void setTimeDivisions(int divisions);

Q_SIGNALS:
    void bufferChanged();
    void microvoltsPerDivisionChanged();
    void timeDivisionsChanged();

protected:
    void fillPicture(LinePicture& picture) override;

private:
    QMatrix4x4 laneMatrix(int lane, int lanes) const;
    void addGrid(LinePicture& picture, int lanes) const;

    QPointer<TraceBuffer> m_buffer;
    double m_microvoltsPerDivision = 100;
    int m_timeDivisions = 10;
    TraceGeometry m_geometry;
};
