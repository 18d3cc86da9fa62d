#include "app/ui/IndicesController.h"

#include "core/CortexCore.h"
#include "dsp/CustomBCIAlgorithm.h"

#include <cmath>
#include <limits>

IndicesController::IndicesController(CortexCore* engine, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
{
    connect(engine, &CortexCore::deviceStarted, this, &IndicesController::resetHistory);
    connect(engine, &CortexCore::newCortexDataResult, this, &IndicesController::onResult);
    resetHistory();
}

// One history sample per spectrum step, so the history's rate is the steps per second.
void IndicesController::resetHistory()
{
    const double step = m_engine->getSpectrumWindowStepSeconds();
    const double rate = step > 0 ? 1.0 / step : 10.0;
    m_history.reset({ QStringLiteral("Meditation"), QStringLiteral("Concentration") }, rate, HistorySeconds);
    m_meditation = m_concentration = -1;
    Q_EMIT valuesChanged();
}

void IndicesController::onResult(const CortexDataResult& result)
{
    // With no algorithms left no result carries any: the empty list clears the values shown.
    if (result.hasAlgorithmResults || m_engine->getCustomAlgoritms().isEmpty())
        m_algorithms.setResults(result.algorithmResults);
    if (!result.hasIndexValues)
        return;
    if (std::abs(m_history.sampleRate() * m_engine->getSpectrumWindowStepSeconds() - 1.0) > 1e-6)
        resetHistory();
    m_meditation = result.meditation.level;
    m_concentration = result.concentration.level;
    // No value yet (-1) is a gap in the history, not a dip to the bottom.
    auto point = [](double level) { return level < 0 ? std::numeric_limits<float>::quiet_NaN() : float(level); };
    const float values[2] = { point(m_meditation), point(m_concentration) };
    m_history.appendFrame(values, 2);
    Q_EMIT valuesChanged();
}
