#pragma once

#include "app/ui/TraceBuffer.h"

#include <QList>
#include <QObject>

class ChannelListModel;
class CortexCore;
class OrvexSettings;

// The signal screen: live traces of the filtered montage channels, their time base and
// scale, freezing, and the quick filter controls that act on the engine through the settings.
class SignalController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(TraceBuffer* traces READ traces CONSTANT)
    Q_PROPERTY(double samplingRate READ samplingRate NOTIFY layoutChanged)
    Q_PROPERTY(double timeBase READ timeBase WRITE setTimeBase NOTIFY viewChanged)
    Q_PROPERTY(QList<double> timeBases READ timeBases CONSTANT)
    Q_PROPERTY(double microvoltsPerDivision READ microvoltsPerDivision WRITE setMicrovoltsPerDivision NOTIFY viewChanged)
    Q_PROPERTY(QList<double> scales READ scales CONSTANT)
    Q_PROPERTY(bool autoScale READ autoScale WRITE setAutoScale NOTIFY viewChanged)
    Q_PROPERTY(bool frozen READ isFrozen WRITE setFrozen NOTIFY viewChanged)
    Q_PROPERTY(double hpf READ hpf WRITE setHpf NOTIFY filtersChanged)
    Q_PROPERTY(double lpf READ lpf WRITE setLpf NOTIFY filtersChanged)
    Q_PROPERTY(int notch READ notch WRITE setNotch NOTIFY filtersChanged)
    Q_PROPERTY(QList<double> hpfChoices READ hpfChoices CONSTANT)
    Q_PROPERTY(QList<double> lpfChoices READ lpfChoices CONSTANT)
    Q_PROPERTY(QList<int> notchChoices READ notchChoices CONSTANT)
    Q_PROPERTY(qint64 samplesShown READ samplesShown NOTIFY samplesArrived)
public:
    // Seconds of signal the traces keep: the longest time base.
    static constexpr double KeptSeconds = 20;

    SignalController(CortexCore* engine, OrvexSettings* settings, ChannelListModel* channels,
                     QObject* parent = nullptr);

    TraceBuffer* traces() { return &m_traces; }
    double samplingRate() const { return m_traces.sampleRate(); }
    double timeBase() const { return m_timeBase; }
    void setTimeBase(double seconds);
    static QList<double> timeBases();
    double microvoltsPerDivision() const { return m_microvoltsPerDivision; }
    void setMicrovoltsPerDivision(double microvolts);
    static QList<double> scales();
    bool autoScale() const { return m_autoScale; }
    void setAutoScale(bool automatic);
    bool isFrozen() const { return m_frozen; }
    void setFrozen(bool frozen);

    double hpf() const;
    double lpf() const;
    int notch() const;
    void setHpf(double hz);
    void setLpf(double hz);
    void setNotch(int hz);
    static QList<double> hpfChoices();
    static QList<double> lpfChoices();
    static QList<int> notchChoices();

    qint64 samplesShown() const { return m_traces.written(); }

    // "10 µV", "2 mV": the label of a scale choice.
    Q_INVOKABLE static QString scaleText(double microvolts);
    // "off", "0.5 Hz": the label of a filter choice.
    Q_INVOKABLE static QString frequencyText(double hz);

Q_SIGNALS:
    void layoutChanged();
    void viewChanged();
    void filtersChanged();
    void samplesArrived();

private:
    void resetLayout();
    void onData(const QList<QList<float>>& block);

    CortexCore* m_engine;
    OrvexSettings* m_settings;
    ChannelListModel* m_channels;
    TraceBuffer m_traces;
    double m_timeBase = 10;
    double m_microvoltsPerDivision = 100;
    bool m_autoScale = false;
    bool m_frozen = false;
};
