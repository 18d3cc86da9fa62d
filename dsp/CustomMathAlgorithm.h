#pragma once

#include "dsp/CustomBCIAlgorithm.h"
#include "dsp/FormulaExpression.h"

// A formula over the results of the other algorithms (by their names) and the indices
// "meditation" and "concentration", e.g. "(alpha_o1 + alpha_o2) / 2 - concentration".
// The engine supplies all of them, by name, in the results map. A malformed formula is
// refused at construction (one console line) and the algorithm then always yields 0.
class CustomMathAlgorithm : public CustomBCIAlgorithm
{
    Q_OBJECT
public:
    CustomMathAlgorithm(QString name, const QString& formula, QObject* parent = nullptr);

    DataType getDataType() const override { return DataType_Results; }

    QString getFormula() const { return m_expression.getText(); }
    bool isValid() const { return m_expression.isValid(); }
    QString errorText() const { return m_expression.errorText(); }
    // Lower-cased names the formula reads: lets the engine order algorithms that depend on
    // each other's results.
    QStringList variableNames() const { return m_expression.variableNames(); }

protected:
    double internalProcessResults(const QMap<QString, double>& results) override;

private:
    FormulaExpression m_expression;
};
