#pragma once

#include "services/TimeSource.h"

#include <QList>
#include <QObject>
#include <QPair>

// Measures the real arrival rate of samples over a sliding time window.
class DataCounter : public QObject
{
    Q_OBJECT
public:
    explicit DataCounter(QObject* parent = nullptr);

    void addFrame(int count);
    double dataRate() const; // samples per second
    void reset(int intervalMs);
    void start(int intervalMs);
    void updateTime();
    void setIntervalMs(int intervalMs);
    int intervalMS() const;
    int packets() const;
    qint64 lastDataTimestamp() const;

    QString label() const { return m_label; }
    void setLabel(const QString& label) { m_label = label; }
    int marker() const { return m_marker; }
    void setMarker(int marker) { m_marker = marker; }

    void setTimeSource(TimeSource source) { m_now = std::move(source); }

private:
    QString m_label;
    qint32 m_marker = -1;
    qint32 m_intervalMs = 3000;
    QList<QPair<qint64, qint32>> m_frames; // (arrival time, sample count)
    qint64 m_lastDataTimestamp = 0;
    qint32 m_packets = 0;
    TimeSource m_now = systemTimeMs;
};
