#pragma once

#include "app/CsvStreamWriter.h"
#include "app/CommandLineOptions.h"
#include "core/CortexDataResult.h"

#include <QObject>

class OrvexModel;
class QTimer;

// One run without a window: starts the chosen device, streams it through the engine, writes
// the requested files and ends after the requested duration or on request.
class HeadlessSession : public QObject
{
    Q_OBJECT
public:
    HeadlessSession(OrvexModel* model, const CommandLineOptions& options, QObject* parent = nullptr);

    // False with `error` set when the session cannot start.
    bool start(QString& error);

public Q_SLOTS:
    // Stops the device, closes the files and reports the exit code.
    void finish(int exitCode = 0);

Q_SIGNALS:
    void finished(int exitCode);

private:
    bool startGenerator(QString& error);
    bool startFilePlayer(QString& error);
    bool startHeadsetSimulator(QString& error);
    void pushFileBlocks();
    bool openMetrics(QString& error);
    void onData(QList<QList<float>> block);
    void onResult(const CortexDataResult& result);
    void onDeadline();

    // A device that stops delivering must not keep a timed run alive for ever.
    static constexpr int StallGraceMs = 10000;
    static constexpr int SearchTimeoutMs = 3000;

    OrvexModel* m_model;
    CommandLineOptions m_options;
    CsvStreamWriter m_csv;
    CsvStreamWriter m_metrics;
    bool m_csvOpen = false;
    bool m_metricsOpen = false;
    float m_samplingRate = 0;
    bool m_finished = false;
    qint64 m_samples = 0;       // per channel, since streaming started
    qint64 m_targetSamples = 0; // 0: no duration given
    qint64 m_nextFileSample = 0; // playback at speed 0
    QTimer* m_pushTimer = nullptr;
};
