#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

// Abstract source of recorded data: channels, markers and durations of one recording.
class GeneralDataProvider : public QObject
{
    Q_OBJECT
public:
    explicit GeneralDataProvider(QObject* parent = nullptr) : QObject(parent) {}
    ~GeneralDataProvider() override = default;

    virtual int getChannelCount() = 0;
    virtual QList<QString> getChannelNames() = 0;
    virtual QList<QString> getChannelTypes() = 0;
    virtual int getDurationSamples() = 0;
    virtual float getDurationSeconds() = 0;
    virtual float getSamplingRate() = 0;
    // Samples from..to-1 of one channel; to < 0 means to the end.
    virtual QList<float> getSingleChannelDataSamples(unsigned channel, unsigned from, int to) = 0;
    // Onset in seconds -> text.
    virtual QMap<double, QString> getMarkers() = 0;
    virtual bool isValid() = 0;
};
