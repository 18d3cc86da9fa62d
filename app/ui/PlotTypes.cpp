#include "app/ui/PlotTypes.h"

#include "app/ui/ReviewPlot.h"
#include "app/ui/SpectrogramPlot.h"
#include "app/ui/SpectrumBuffer.h"
#include "app/ui/SpectrumPlot.h"
#include "app/ui/TraceBuffer.h"
#include "app/ui/TracePlot.h"

#include <QQmlEngine>

void PlotTypes::registerAll()
{
    const char* uri = "OrvexPro.Plots";
    qmlRegisterType<TracePlot>(uri, 1, 0, "TracePlot");
    qmlRegisterType<SpectrumPlot>(uri, 1, 0, "SpectrumPlot");
    qmlRegisterType<SpectrogramPlot>(uri, 1, 0, "SpectrogramPlot");
    qmlRegisterType<ReviewPlot>(uri, 1, 0, "ReviewPlot");
    const QString provided = QStringLiteral("provided by the application");
    qmlRegisterUncreatableType<TraceBuffer>(uri, 1, 0, "TraceBuffer", provided);
    qmlRegisterUncreatableType<SpectrumBuffer>(uri, 1, 0, "SpectrumBuffer", provided);
}
