#pragma once

#include "core/AbstractDevice.h"
#include "services/TimeSource.h"

#include <QObject>

class KxTimer;
class VirtualDevicesSettings;

// A device without hardware: synthesises multichannel test signals in microvolts and hands
// them to the engine exactly as a headset's samples would arrive.
//
// Part of the waveform state (sine time axis, per-channel counters, ECG beats, the noise
// generator) is process-wide and shared by every instance, so all instances must live on one
// thread.
class GeneratorVirtualDevice : public AbstractDevice
{
    Q_OBJECT
public:
    enum GeneratorType { Sine = 0, Saw = 1, Random = 2, Meander = 3, DoubleSine = 4, ModulatedSine = 5, ECG = 6 };
    Q_ENUM(GeneratorType)

    explicit GeneratorVirtualDevice(QObject* parent = nullptr);
    ~GeneratorVirtualDevice() override;

    void setSettings(VirtualDevicesSettings* settings);
    void setSettings(float samplingRate, float baseFrequency, float frequencyIncrement, float amplitude,
                     QList<QString> channelNames, int signalType, float secondFrequency);
    void setFrequency(float samplingRate);
    void setAmplitude(float amplitude);
    void setBaseFreq(float frequency);
    void setFreqIncrement(float increment);
    void setSignalType(int type);
    void setChannelNames(QList<QString> names);

    // Pacing reads the wall clock through this; tests drive it by hand.
    void setTimeSource(TimeSource source);

    QString deviceType() override;
    QString deviceVersion() override;
    bool open() override;
    void close() override;
    bool start(int frequency) override;
    void stop() override;
    bool hasBattery() override;
    bool hasImpedance() override;

private Q_SLOTS:
    void onDataTimer();

private:
    void calcSampleOnPack();
    void makeSine();
    void makeSaw();
    void makeRandom();
    void makeMeander();
    void makeECG();
    float randomFloat(float min, float max);

    float channelFrequency(int channel) const;
    QList<QList<float>> newBlock() const;

    KxTimer* m_dataTimer = nullptr;
    qint64 m_lastTickTime = 0;
    float m_sampleCarry = 0;
    float m_secondFrequency = 0;
    float m_modulationFrequency = 0;
    float m_amplitude = 250.0f;
    float m_frequencyIncrement = 0;
    float m_samplesPerMs = 0;
    float m_baseFrequency = 10.0f;
    qint32 m_samplesThisTick = 0;
    int m_signalType = Random; // a GeneratorType; held as int so any stored value is defined
    float m_ecgHeartRate = 60.0f;
    float m_ecgHrv = 0.5f;

    TimeSource m_timeSource;
};
