#include "dsp/CustomMathAlgorithm.h"

CustomMathAlgorithm::CustomMathAlgorithm(QString name, const QString& formula, QObject* parent)
    : CustomBCIAlgorithm(std::move(name), parent)
    , m_expression(formula, getName())
{
}

double CustomMathAlgorithm::internalProcessResults(const QMap<QString, double>& results)
{
    return m_expression.evaluate(results);
}
