#pragma once

#include "core/StandartRhythmSample.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

// A user-defined index evaluated by the engine on every processing step. Each algorithm
// declares the one kind of data it consumes; the engine offers every kind to every algorithm
// through the process* entry points, and only the matching one reaches the subclass.
// The result is a double; its name is the algorithm's name.
class CustomBCIAlgorithm : public QObject
{
    Q_OBJECT
public:
    // The numeric values are part of the interface.
    enum DataType {
        DataType_Data = 0,     // filtered sample blocks, per channel
        DataType_Spectrum = 1, // one amplitude spectrum per channel
        DataType_Rhythms = 2,  // one rhythm sample per channel
        DataType_Results = 3,  // results of the other algorithms and the indices, by name
    };
    Q_ENUM(DataType)

    explicit CustomBCIAlgorithm(QString name, QObject* parent = nullptr);
    ~CustomBCIAlgorithm() override = default;

    virtual DataType getDataType() const = 0;

    // Entry points: each returns the subclass's result when the data type matches, else 0
    // (and then leaves lastResult() alone). A non-finite result counts as 0.
    double processData(QList<QList<float>>& blocks);
    double processSpectrumData(QList<QList<float>>& spectra, float frequencyStep);
    double processRhythms(QList<StandartRhythmSample>& samples);
    double processResults(const QMap<QString, double>& results);

    QString getName() const { return m_name; }
    // The result of the latest matching entry-point call; 0 before the first one.
    double lastResult() const { return m_lastResult; }
    // {"name": <name>, "value": <lastResult>}: the object the engine publishes per algorithm.
    QJsonObject toJson() const;

    void setMinMax(double min, double max);
    double getMin() const { return m_min; }
    double getMax() const { return m_max; }

    void setVisibleToControl(bool visible) { m_visibleToControl = visible; }
    bool visibleToControl() const { return m_visibleToControl; }

    // The current montage channel names, in channel order.
    virtual void updateChannelInfo(QList<QString> names);
    QList<QString> getChannelNames() const { return m_channelNames; }

protected:
    // The subclass's computation for its data type; the defaults return 0.
    virtual double internalProcessData(QList<QList<float>>& blocks);
    virtual double internalProcessSpectrum(QList<QList<float>>& spectra, float frequencyStep);
    virtual double internalProcessRhythms(QList<StandartRhythmSample>& samples);
    virtual double internalProcessResults(const QMap<QString, double>& results);

private:
    double keep(double result);

    QString m_name;
    bool m_visibleToControl = false;
    double m_min = 0.0;
    double m_max = 100.0;
    QList<QString> m_channelNames;
    double m_lastResult = 0.0;
};
