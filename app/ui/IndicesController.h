#pragma once

#include "app/ui/AlgorithmListModel.h"
#include "app/ui/TraceBuffer.h"

#include <QObject>

class CortexCore;
struct CortexDataResult;

// The indices screen: meditation and concentration (0-100, -1 before the first value), their
// recent history, and the values of the custom algorithms.
class IndicesController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double meditation READ meditation NOTIFY valuesChanged)
    Q_PROPERTY(double concentration READ concentration NOTIFY valuesChanged)
    Q_PROPERTY(TraceBuffer* history READ history CONSTANT)
    Q_PROPERTY(double historySeconds READ historySeconds CONSTANT)
    Q_PROPERTY(AlgorithmListModel* algorithms READ algorithms CONSTANT)
public:
    static constexpr double HistorySeconds = 120;

    explicit IndicesController(CortexCore* engine, QObject* parent = nullptr);

    double meditation() const { return m_meditation; }
    double concentration() const { return m_concentration; }
    TraceBuffer* history() { return &m_history; }
    double historySeconds() const { return HistorySeconds; }
    AlgorithmListModel* algorithms() { return &m_algorithms; }

Q_SIGNALS:
    void valuesChanged();

private:
    void resetHistory();
    void onResult(const CortexDataResult& result);

    CortexCore* m_engine;
    TraceBuffer m_history;
    AlgorithmListModel m_algorithms;
    double m_meditation = -1;
    double m_concentration = -1;
};
