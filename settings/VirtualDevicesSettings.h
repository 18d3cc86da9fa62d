#pragma once

#include "devices/GeneratorVirtualDevice.h"
#include "settings/KxSettings.h"

#include <QString>

// Settings of the two virtual devices: the signal generator and the EDF/BDF file player.
class VirtualDevicesSettings : public KxSettings
{
    Q_OBJECT

    Q_PROPERTY(bool GeneratorEnabled READ getGeneratorEnabled WRITE setGeneratorEnabled NOTIFY GeneratorEnabledChanged)
    Q_CLASSINFO("GeneratorEnabledCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorEnabledDefault", "true")
    Q_CLASSINFO("GeneratorEnabledEditable", "true")
    Q_CLASSINFO("GeneratorEnabledDisplayName", "Signal generator")
    Q_CLASSINFO("GeneratorEnabledDescription", "Offer the signal generator as a device")

    Q_PROPERTY(GeneratorVirtualDevice::GeneratorType SignalType READ getSignalType WRITE setSignalType NOTIFY SignalTypeChanged)
    Q_CLASSINFO("SignalTypeCategory", "VirtualDevices")
    Q_CLASSINFO("SignalTypeDefault", "GeneratorVirtualDevice::GeneratorType::Random")
    Q_CLASSINFO("SignalTypeEditable", "true")
    Q_CLASSINFO("SignalTypeDisplayName", "Signal type")
    Q_CLASSINFO("SignalTypeDescription", "Waveform the generator produces")

    Q_PROPERTY(float GeneratorECGbpm READ getGeneratorECGbpm WRITE setGeneratorECGbpm NOTIFY GeneratorECGbpmChanged)
    Q_CLASSINFO("GeneratorECGbpmCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorECGbpmDefault", "60.0f")
    Q_CLASSINFO("GeneratorECGbpmMinimum", "1.0")
    Q_CLASSINFO("GeneratorECGbpmMaximum", "500.0")
    Q_CLASSINFO("GeneratorECGbpmStep", "0.1")
    Q_CLASSINFO("GeneratorECGbpmPrecision", "1")
    Q_CLASSINFO("GeneratorECGbpmSuffix", "bpm")
    Q_CLASSINFO("GeneratorECGbpmEditable", "true")
    Q_CLASSINFO("GeneratorECGbpmVisibleBound", "SignalType:ECG")
    Q_CLASSINFO("GeneratorECGbpmDisplayName", "Heart rate")
    Q_CLASSINFO("GeneratorECGbpmDescription", "Beats per minute of the synthetic ECG")

    Q_PROPERTY(float GeneratorECGHRV READ getGeneratorECGHRV WRITE setGeneratorECGHRV NOTIFY GeneratorECGHRVChanged)
    Q_CLASSINFO("GeneratorECGHRVCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorECGHRVDefault", "0.1f")
    Q_CLASSINFO("GeneratorECGHRVMinimum", "0.0")
    Q_CLASSINFO("GeneratorECGHRVMaximum", "2.0")
    Q_CLASSINFO("GeneratorECGHRVStep", "0.01")
    Q_CLASSINFO("GeneratorECGHRVPrecision", "1")
    Q_CLASSINFO("GeneratorECGHRVEditable", "true")
    Q_CLASSINFO("GeneratorECGHRVVisibleBound", "SignalType:ECG")
    Q_CLASSINFO("GeneratorECGHRVDisplayName", "Heart rate variability")
    Q_CLASSINFO("GeneratorECGHRVDescription", "Depth of the beat-to-beat variation of the synthetic ECG")

    Q_PROPERTY(int GeneratorSamplingRate READ getGeneratorSamplingRate WRITE setGeneratorSamplingRate NOTIFY GeneratorSamplingRateChanged)
    Q_CLASSINFO("GeneratorSamplingRateCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorSamplingRateDefault", "125")
    Q_CLASSINFO("GeneratorSamplingRateMinimum", "10")
    Q_CLASSINFO("GeneratorSamplingRateMaximum", "2000")
    Q_CLASSINFO("GeneratorSamplingRateStep", "1")
    Q_CLASSINFO("GeneratorSamplingRateSuffix", "Hz")
    Q_CLASSINFO("GeneratorSamplingRateEditable", "true")
    Q_CLASSINFO("GeneratorSamplingRateDisplayName", "Sampling rate")
    Q_CLASSINFO("GeneratorSamplingRateDescription", "Samples per second of every generated channel")

    Q_PROPERTY(float GeneratorBaseFrequency READ getGeneratorBaseFrequency WRITE setGeneratorBaseFrequency NOTIFY GeneratorBaseFrequencyChanged)
    Q_CLASSINFO("GeneratorBaseFrequencyCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorBaseFrequencyDefault", "10.0f")
    Q_CLASSINFO("GeneratorBaseFrequencyMinimum", "0.0")
    Q_CLASSINFO("GeneratorBaseFrequencyMaximum", "100.0")
    Q_CLASSINFO("GeneratorBaseFrequencyStep", "0.1")
    Q_CLASSINFO("GeneratorBaseFrequencyPrecision", "1")
    Q_CLASSINFO("GeneratorBaseFrequencySuffix", "Hz")
    Q_CLASSINFO("GeneratorBaseFrequencyEditable", "true")
    Q_CLASSINFO("GeneratorBaseFrequencyVisibleBound", "SignalType:!Random&&!ECG")
    Q_CLASSINFO("GeneratorBaseFrequencyDisplayName", "Base frequency")
    Q_CLASSINFO("GeneratorBaseFrequencyDescription", "Frequency of the first channel")

    Q_PROPERTY(float GeneratorSecondFrequency READ getGeneratorSecondFrequency WRITE setGeneratorSecondFrequency NOTIFY GeneratorSecondFrequencyChanged)
    Q_CLASSINFO("GeneratorSecondFrequencyCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorSecondFrequencyDefault", "2.0f")
    Q_CLASSINFO("GeneratorSecondFrequencyMinimum", "0.0")
    Q_CLASSINFO("GeneratorSecondFrequencyMaximum", "100.0")
    Q_CLASSINFO("GeneratorSecondFrequencyStep", "0.1")
    Q_CLASSINFO("GeneratorSecondFrequencyPrecision", "1")
    Q_CLASSINFO("GeneratorSecondFrequencySuffix", "Hz")
    Q_CLASSINFO("GeneratorSecondFrequencyEditable", "true")
    Q_CLASSINFO("GeneratorSecondFrequencyVisibleBound", "SignalType:DoubleSine|ModulatedSine")
    Q_CLASSINFO("GeneratorSecondFrequencyDisplayName", "Second frequency")
    Q_CLASSINFO("GeneratorSecondFrequencyDescription", "Added sine of the double sine, or modulation of the modulated sine")

    Q_PROPERTY(float GeneratorAmplitude READ getGeneratorAmplitude WRITE setGeneratorAmplitude NOTIFY GeneratorAmplitudeChanged)
    Q_CLASSINFO("GeneratorAmplitudeCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorAmplitudeDefault", "250.0f")
    Q_CLASSINFO("GeneratorAmplitudeMinimum", "1.0")
    Q_CLASSINFO("GeneratorAmplitudeMaximum", "10000.0")
    Q_CLASSINFO("GeneratorAmplitudeStep", "0.1")
    Q_CLASSINFO("GeneratorAmplitudePrecision", "1")
    Q_CLASSINFO("GeneratorAmplitudePrefix", "!-±")
    Q_CLASSINFO("GeneratorAmplitudeSuffix", "!-µV")
    Q_CLASSINFO("GeneratorAmplitudeEditable", "true")
    Q_CLASSINFO("GeneratorAmplitudeDisplayName", "Amplitude")
    Q_CLASSINFO("GeneratorAmplitudeDescription", "Peak amplitude of every generated signal")

    Q_PROPERTY(float GeneratorFrequencyIncrement READ getGeneratorFrequencyIncrement WRITE setGeneratorFrequencyIncrement NOTIFY GeneratorFrequencyIncrementChanged)
    Q_CLASSINFO("GeneratorFrequencyIncrementCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorFrequencyIncrementDefault", "0.0f")
    Q_CLASSINFO("GeneratorFrequencyIncrementMinimum", "0.0")
    Q_CLASSINFO("GeneratorFrequencyIncrementMaximum", "100.0")
    Q_CLASSINFO("GeneratorFrequencyIncrementStep", "0.1")
    Q_CLASSINFO("GeneratorFrequencyIncrementPrecision", "1")
    Q_CLASSINFO("GeneratorFrequencyIncrementSuffix", "Hz")
    Q_CLASSINFO("GeneratorFrequencyIncrementEditable", "true")
    Q_CLASSINFO("GeneratorFrequencyIncrementVisibleBound", "SignalType:!Random&&!ECG")
    Q_CLASSINFO("GeneratorFrequencyIncrementDisplayName", "Frequency increment")
    Q_CLASSINFO("GeneratorFrequencyIncrementDescription", "Added to the frequency for each further channel")

    Q_PROPERTY(QString GeneratorChannelNames READ getGeneratorChannelNames WRITE setGeneratorChannelNames NOTIFY GeneratorChannelNamesChanged)
    Q_CLASSINFO("GeneratorChannelNamesCategory", "VirtualDevices")
    Q_CLASSINFO("GeneratorChannelNamesDefault", "\"O1,T3,Fp1,Fp2,T4,O2\"")
    Q_CLASSINFO("GeneratorChannelNamesEditable", "true")
    Q_CLASSINFO("GeneratorChannelNamesDisplayName", "Channel names")
    Q_CLASSINFO("GeneratorChannelNamesDescription", "Comma-separated names; their number is the channel count")

    Q_PROPERTY(QString EDFPath READ getEDFPath WRITE setEDFPath NOTIFY EDFPathChanged)
    Q_CLASSINFO("EDFPathCategory", "VirtualDevices")
    Q_CLASSINFO("EDFPathDefault", "\"\"")
    Q_CLASSINFO("EDFPathEditable", "true")
    Q_CLASSINFO("EDFPathSpecialType", "PickFile:*.edf *.bdf")
    Q_CLASSINFO("EDFPathDisplayName", "Recording to play")
    Q_CLASSINFO("EDFPathDescription", "EDF or BDF file offered as a device; empty for none")

    Q_PROPERTY(QString HeadsetSimName READ getHeadsetSimName WRITE setHeadsetSimName NOTIFY HeadsetSimNameChanged)
    Q_CLASSINFO("HeadsetSimNameCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimNameDefault", "\"OX8G (0031)\"")
    Q_CLASSINFO("HeadsetSimNameEditable", "true")
    Q_CLASSINFO("HeadsetSimNameDisplayName", "Simulated headset name")
    Q_CLASSINFO("HeadsetSimNameDescription", "Name the simulated headset advertises; it decides the channel count")

    Q_PROPERTY(float HeadsetSimPacketLoss READ getHeadsetSimPacketLoss WRITE setHeadsetSimPacketLoss NOTIFY HeadsetSimPacketLossChanged)
    Q_CLASSINFO("HeadsetSimPacketLossCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimPacketLossDefault", "0.0f")
    Q_CLASSINFO("HeadsetSimPacketLossMinimum", "0.0")
    Q_CLASSINFO("HeadsetSimPacketLossMaximum", "100.0")
    Q_CLASSINFO("HeadsetSimPacketLossStep", "0.1")
    Q_CLASSINFO("HeadsetSimPacketLossPrecision", "1")
    Q_CLASSINFO("HeadsetSimPacketLossSuffix", "%")
    Q_CLASSINFO("HeadsetSimPacketLossEditable", "true")
    Q_CLASSINFO("HeadsetSimPacketLossDisplayName", "Simulated packet loss")
    Q_CLASSINFO("HeadsetSimPacketLossDescription", "Share of the simulated headset's packets that never arrive")

    Q_PROPERTY(float HeadsetSimRateFactor READ getHeadsetSimRateFactor WRITE setHeadsetSimRateFactor NOTIFY HeadsetSimRateFactorChanged)
    Q_CLASSINFO("HeadsetSimRateFactorCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimRateFactorDefault", "1.0f")
    Q_CLASSINFO("HeadsetSimRateFactorMinimum", "0.1")
    Q_CLASSINFO("HeadsetSimRateFactorMaximum", "10.0")
    Q_CLASSINFO("HeadsetSimRateFactorStep", "0.1")
    Q_CLASSINFO("HeadsetSimRateFactorPrecision", "2")
    Q_CLASSINFO("HeadsetSimRateFactorEditable", "true")
    Q_CLASSINFO("HeadsetSimRateFactorDisplayName", "Simulated rate factor")
    Q_CLASSINFO("HeadsetSimRateFactorDescription", "The simulated headset sends this multiple of the commanded rate (1: correct)")

    Q_PROPERTY(int HeadsetSimSilenceAfter READ getHeadsetSimSilenceAfter WRITE setHeadsetSimSilenceAfter NOTIFY HeadsetSimSilenceAfterChanged)
    Q_CLASSINFO("HeadsetSimSilenceAfterCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimSilenceAfterDefault", "0")
    Q_CLASSINFO("HeadsetSimSilenceAfterMinimum", "0")
    Q_CLASSINFO("HeadsetSimSilenceAfterMaximum", "86400")
    Q_CLASSINFO("HeadsetSimSilenceAfterStep", "1")
    Q_CLASSINFO("HeadsetSimSilenceAfterSuffix", "s")
    Q_CLASSINFO("HeadsetSimSilenceAfterEditable", "true")
    Q_CLASSINFO("HeadsetSimSilenceAfterDisplayName", "Simulated silence after")
    Q_CLASSINFO("HeadsetSimSilenceAfterDescription", "The simulated headset stops sending, once, after this many seconds of streaming (0: never)")

    Q_PROPERTY(int HeadsetSimDisconnectAfter READ getHeadsetSimDisconnectAfter WRITE setHeadsetSimDisconnectAfter NOTIFY HeadsetSimDisconnectAfterChanged)
    Q_CLASSINFO("HeadsetSimDisconnectAfterCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimDisconnectAfterDefault", "0")
    Q_CLASSINFO("HeadsetSimDisconnectAfterMinimum", "0")
    Q_CLASSINFO("HeadsetSimDisconnectAfterMaximum", "86400")
    Q_CLASSINFO("HeadsetSimDisconnectAfterStep", "1")
    Q_CLASSINFO("HeadsetSimDisconnectAfterSuffix", "s")
    Q_CLASSINFO("HeadsetSimDisconnectAfterEditable", "true")
    Q_CLASSINFO("HeadsetSimDisconnectAfterDisplayName", "Simulated disconnection after")
    Q_CLASSINFO("HeadsetSimDisconnectAfterDescription", "The simulated headset drops its link, once, after this many seconds of streaming (0: never)")

    Q_PROPERTY(int HeadsetSimAwayFor READ getHeadsetSimAwayFor WRITE setHeadsetSimAwayFor NOTIFY HeadsetSimAwayForChanged)
    Q_CLASSINFO("HeadsetSimAwayForCategory", "VirtualDevices")
    Q_CLASSINFO("HeadsetSimAwayForDefault", "3")
    Q_CLASSINFO("HeadsetSimAwayForMinimum", "0")
    Q_CLASSINFO("HeadsetSimAwayForMaximum", "86400")
    Q_CLASSINFO("HeadsetSimAwayForStep", "1")
    Q_CLASSINFO("HeadsetSimAwayForSuffix", "s")
    Q_CLASSINFO("HeadsetSimAwayForEditable", "true")
    Q_CLASSINFO("HeadsetSimAwayForDisplayName", "Simulated absence")
    Q_CLASSINFO("HeadsetSimAwayForDescription", "Seconds the simulated headset stays out of range after dropping its link")

public:
    explicit VirtualDevicesSettings(QObject* parent = nullptr);
    ~VirtualDevicesSettings() override;

    bool getGeneratorEnabled() const { return m_generatorEnabled; }
    GeneratorVirtualDevice::GeneratorType getSignalType() const { return m_signalType; }
    float getGeneratorECGbpm() const { return m_generatorECGbpm; }
    float getGeneratorECGHRV() const { return m_generatorECGHRV; }
    int getGeneratorSamplingRate() const { return m_generatorSamplingRate; }
    float getGeneratorBaseFrequency() const { return m_generatorBaseFrequency; }
    float getGeneratorSecondFrequency() const { return m_generatorSecondFrequency; }
    float getGeneratorAmplitude() const { return m_generatorAmplitude; }
    float getGeneratorFrequencyIncrement() const { return m_generatorFrequencyIncrement; }
    QString getGeneratorChannelNames() const { return m_generatorChannelNames; }
    QString getEDFPath() const { return m_edfPath; }
    QString getHeadsetSimName() const { return m_headsetSimName; }
    float getHeadsetSimPacketLoss() const { return m_headsetSimPacketLoss; }
    float getHeadsetSimRateFactor() const { return m_headsetSimRateFactor; }
    int getHeadsetSimSilenceAfter() const { return m_headsetSimSilenceAfter; }
    int getHeadsetSimDisconnectAfter() const { return m_headsetSimDisconnectAfter; }
    int getHeadsetSimAwayFor() const { return m_headsetSimAwayFor; }

    void setGeneratorEnabled(bool value);
    void setSignalType(GeneratorVirtualDevice::GeneratorType value);
    void setGeneratorECGbpm(float value);
    void setGeneratorECGHRV(float value);
    void setGeneratorSamplingRate(int value);
    void setGeneratorBaseFrequency(float value);
    void setGeneratorSecondFrequency(float value);
    void setGeneratorAmplitude(float value);
    void setGeneratorFrequencyIncrement(float value);
    void setGeneratorChannelNames(QString value);
    void setEDFPath(QString value);
    void setHeadsetSimName(QString value);
    void setHeadsetSimPacketLoss(float value);
    void setHeadsetSimRateFactor(float value);
    void setHeadsetSimSilenceAfter(int value);
    void setHeadsetSimDisconnectAfter(int value);
    void setHeadsetSimAwayFor(int value);

Q_SIGNALS:
    void GeneratorEnabledChanged();
    void SignalTypeChanged();
    void GeneratorECGbpmChanged();
    void GeneratorECGHRVChanged();
    void GeneratorSamplingRateChanged();
    void GeneratorBaseFrequencyChanged();
    void GeneratorSecondFrequencyChanged();
    void GeneratorAmplitudeChanged();
    void GeneratorFrequencyIncrementChanged();
    void GeneratorChannelNamesChanged();
    void EDFPathChanged();
    void HeadsetSimNameChanged();
    void HeadsetSimPacketLossChanged();
    void HeadsetSimRateFactorChanged();
    void HeadsetSimSilenceAfterChanged();
    void HeadsetSimDisconnectAfterChanged();
    void HeadsetSimAwayForChanged();

private:
    // Start values only until initialize() applies the declared defaults.
    bool m_generatorEnabled = false;
    GeneratorVirtualDevice::GeneratorType m_signalType = GeneratorVirtualDevice::Sine;
    float m_generatorECGbpm = 0.0f;
    float m_generatorECGHRV = 0.0f;
    int m_generatorSamplingRate = 0;
    float m_generatorBaseFrequency = 0.0f;
    float m_generatorSecondFrequency = 0.0f;
    float m_generatorAmplitude = 0.0f;
    float m_generatorFrequencyIncrement = 0.0f;
    QString m_generatorChannelNames;
    QString m_edfPath;
    QString m_headsetSimName;
    float m_headsetSimPacketLoss = 0.0f;
    float m_headsetSimRateFactor = 0.0f;
    int m_headsetSimSilenceAfter = 0;
    int m_headsetSimDisconnectAfter = 0;
    int m_headsetSimAwayFor = 0;
};
