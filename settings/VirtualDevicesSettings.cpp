#include "settings/VirtualDevicesSettings.h"

VirtualDevicesSettings::VirtualDevicesSettings(QObject* parent)
    : KxSettings(parent)
{
    initialize();
}

VirtualDevicesSettings::~VirtualDevicesSettings() = default;

void VirtualDevicesSettings::setGeneratorEnabled(bool value)
{
    assign(m_generatorEnabled, value, &VirtualDevicesSettings::GeneratorEnabledChanged);
}

void VirtualDevicesSettings::setSignalType(GeneratorVirtualDevice::GeneratorType value)
{
    assign(m_signalType, value, &VirtualDevicesSettings::SignalTypeChanged);
}

void VirtualDevicesSettings::setGeneratorECGbpm(float value)
{
    assign(m_generatorECGbpm, value, &VirtualDevicesSettings::GeneratorECGbpmChanged);
}

void VirtualDevicesSettings::setGeneratorECGHRV(float value)
{
    assign(m_generatorECGHRV, value, &VirtualDevicesSettings::GeneratorECGHRVChanged);
}

void VirtualDevicesSettings::setGeneratorSamplingRate(int value)
{
    assign(m_generatorSamplingRate, value, &VirtualDevicesSettings::GeneratorSamplingRateChanged);
}

void VirtualDevicesSettings::setGeneratorBaseFrequency(float value)
{
    assign(m_generatorBaseFrequency, value, &VirtualDevicesSettings::GeneratorBaseFrequencyChanged);
}

void VirtualDevicesSettings::setGeneratorSecondFrequency(float value)
{
    assign(m_generatorSecondFrequency, value, &VirtualDevicesSettings::GeneratorSecondFrequencyChanged);
}

void VirtualDevicesSettings::setGeneratorAmplitude(float value)
{
    assign(m_generatorAmplitude, value, &VirtualDevicesSettings::GeneratorAmplitudeChanged);
}

void VirtualDevicesSettings::setGeneratorFrequencyIncrement(float value)
{
    assign(m_generatorFrequencyIncrement, value, &VirtualDevicesSettings::GeneratorFrequencyIncrementChanged);
}

void VirtualDevicesSettings::setGeneratorChannelNames(QString value)
{
    assign(m_generatorChannelNames, value, &VirtualDevicesSettings::GeneratorChannelNamesChanged);
}

void VirtualDevicesSettings::setEDFPath(QString value)
{
    assign(m_edfPath, value, &VirtualDevicesSettings::EDFPathChanged);
}

void VirtualDevicesSettings::setHeadsetSimName(QString value)
{
    assign(m_headsetSimName, value, &VirtualDevicesSettings::HeadsetSimNameChanged);
}

void VirtualDevicesSettings::setHeadsetSimPacketLoss(float value)
{
    assign(m_headsetSimPacketLoss, value, &VirtualDevicesSettings::HeadsetSimPacketLossChanged);
}

void VirtualDevicesSettings::setHeadsetSimRateFactor(float value)
{
    assign(m_headsetSimRateFactor, value, &VirtualDevicesSettings::HeadsetSimRateFactorChanged);
}

void VirtualDevicesSettings::setHeadsetSimSilenceAfter(int value)
{
    assign(m_headsetSimSilenceAfter, value, &VirtualDevicesSettings::HeadsetSimSilenceAfterChanged);
}

void VirtualDevicesSettings::setHeadsetSimDisconnectAfter(int value)
{
    assign(m_headsetSimDisconnectAfter, value, &VirtualDevicesSettings::HeadsetSimDisconnectAfterChanged);
}

void VirtualDevicesSettings::setHeadsetSimAwayFor(int value)
{
    assign(m_headsetSimAwayFor, value, &VirtualDevicesSettings::HeadsetSimAwayForChanged);
}
