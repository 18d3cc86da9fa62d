#include "settings/OrvexSettings.h"

#include <QDir>
#include <QStandardPaths>

OrvexSettings::OrvexSettings(QObject* parent)
    : KxSettings(parent)
{
    initialize();
}

OrvexSettings::~OrvexSettings() = default;

QString OrvexSettings::resolvedDataFolder() const
{
    return m_dataFolder.trimmed().isEmpty() ? defaultDataFolder() : m_dataFolder;
}

QString OrvexSettings::defaultDataFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).filePath(QStringLiteral("OrvexPro/Records"));
}

void OrvexSettings::setStorageTime(int value)
{
    assign(m_storageTime, value, &OrvexSettings::StorageTimeChanged);
}

void OrvexSettings::setFavouriteDevice(QString value)
{
    assign(m_favouriteDevice, value, &OrvexSettings::FavouriteDeviceChanged);
}

void OrvexSettings::setStartFavouriteDevice(bool value)
{
    assign(m_startFavouriteDevice, value, &OrvexSettings::StartFavouriteDeviceChanged);
}

void OrvexSettings::setResumeRecordingAfterReconnect(bool value)
{
    assign(m_resumeRecordingAfterReconnect, value, &OrvexSettings::ResumeRecordingAfterReconnectChanged);
}

void OrvexSettings::setLoggingEnabled(bool value)
{
    assign(m_loggingEnabled, value, &OrvexSettings::LoggingEnabledChanged);
}

void OrvexSettings::setHPF(float value)
{
    assign(m_hpf, value, &OrvexSettings::HPFChanged);
}

void OrvexSettings::setLPF(float value)
{
    assign(m_lpf, value, &OrvexSettings::LPFChanged);
}

void OrvexSettings::setBSF(float value)
{
    assign(m_bsf, value, &OrvexSettings::BSFChanged);
}

void OrvexSettings::setBSF2(float value)
{
    assign(m_bsf2, value, &OrvexSettings::BSF2Changed);
}

void OrvexSettings::setHPFOrder(int value)
{
    assign(m_hpfOrder, value, &OrvexSettings::HPFOrderChanged);
}

void OrvexSettings::setLPFOrder(int value)
{
    assign(m_lpfOrder, value, &OrvexSettings::LPFOrderChanged);
}

void OrvexSettings::setUseFIR(bool value)
{
    assign(m_useFIR, value, &OrvexSettings::UseFIRChanged);
}

void OrvexSettings::setDataFolder(QString value)
{
    assign(m_dataFolder, value, &OrvexSettings::DataFolderChanged);
}

void OrvexSettings::setRecordRawEDF(bool value)
{
    assign(m_recordRawEDF, value, &OrvexSettings::RecordRawEDFChanged);
}

void OrvexSettings::setRecordOXD(bool value)
{
    assign(m_recordOXD, value, &OrvexSettings::RecordOXDChanged);
}

void OrvexSettings::setMeditationChannels(QString value)
{
    assign(m_meditationChannels, value, &OrvexSettings::MeditationChannelsChanged);
}

void OrvexSettings::setMeditationMinFrequency(float value)
{
    assign(m_meditationMinFrequency, value, &OrvexSettings::MeditationMinFrequencyChanged);
}

void OrvexSettings::setMeditationMaxFrequency(float value)
{
    assign(m_meditationMaxFrequency, value, &OrvexSettings::MeditationMaxFrequencyChanged);
}

void OrvexSettings::setMeditationLowThreshold1(float value)
{
    assign(m_meditationLowThreshold1, value, &OrvexSettings::MeditationLowThreshold1Changed);
}

void OrvexSettings::setMeditationLowThreshold2(float value)
{
    assign(m_meditationLowThreshold2, value, &OrvexSettings::MeditationLowThreshold2Changed);
}

void OrvexSettings::setMeditationLowThreshold3(float value)
{
    assign(m_meditationLowThreshold3, value, &OrvexSettings::MeditationLowThreshold3Changed);
}

void OrvexSettings::setMeditationTopThreshold1(float value)
{
    assign(m_meditationTopThreshold1, value, &OrvexSettings::MeditationTopThreshold1Changed);
}

void OrvexSettings::setMeditationTopThreshold2(float value)
{
    assign(m_meditationTopThreshold2, value, &OrvexSettings::MeditationTopThreshold2Changed);
}

void OrvexSettings::setMeditationTopThreshold3(float value)
{
    assign(m_meditationTopThreshold3, value, &OrvexSettings::MeditationTopThreshold3Changed);
}

void OrvexSettings::setMeditationLowThreshold4(int value)
{
    assign(m_meditationLowThreshold4, value, &OrvexSettings::MeditationLowThreshold4Changed);
}

void OrvexSettings::setMeditationTopThreshold4(int value)
{
    assign(m_meditationTopThreshold4, value, &OrvexSettings::MeditationTopThreshold4Changed);
}

void OrvexSettings::setMeditationLowThresholdHistory(int value)
{
    assign(m_meditationLowThresholdHistory, value, &OrvexSettings::MeditationLowThresholdHistoryChanged);
}

void OrvexSettings::setMeditationTopThresholdHistory(int value)
{
    assign(m_meditationTopThresholdHistory, value, &OrvexSettings::MeditationTopThresholdHistoryChanged);
}

void OrvexSettings::setMeditationSmoothing(int value)
{
    assign(m_meditationSmoothing, value, &OrvexSettings::MeditationSmoothingChanged);
}

void OrvexSettings::setMeditationLimitTo100(bool value)
{
    assign(m_meditationLimitTo100, value, &OrvexSettings::MeditationLimitTo100Changed);
}

void OrvexSettings::setConcentrationChannels(QString value)
{
    assign(m_concentrationChannels, value, &OrvexSettings::ConcentrationChannelsChanged);
}

void OrvexSettings::setConcentrationMinFrequency(float value)
{
    assign(m_concentrationMinFrequency, value, &OrvexSettings::ConcentrationMinFrequencyChanged);
}

void OrvexSettings::setConcentrationMaxFrequency(float value)
{
    assign(m_concentrationMaxFrequency, value, &OrvexSettings::ConcentrationMaxFrequencyChanged);
}

void OrvexSettings::setConcentrationLowThreshold1(float value)
{
    assign(m_concentrationLowThreshold1, value, &OrvexSettings::ConcentrationLowThreshold1Changed);
}

void OrvexSettings::setConcentrationLowThreshold2(float value)
{
    assign(m_concentrationLowThreshold2, value, &OrvexSettings::ConcentrationLowThreshold2Changed);
}

void OrvexSettings::setConcentrationLowThreshold3(float value)
{
    assign(m_concentrationLowThreshold3, value, &OrvexSettings::ConcentrationLowThreshold3Changed);
}

void OrvexSettings::setConcentrationTopThreshold1(float value)
{
    assign(m_concentrationTopThreshold1, value, &OrvexSettings::ConcentrationTopThreshold1Changed);
}

void OrvexSettings::setConcentrationTopThreshold2(float value)
{
    assign(m_concentrationTopThreshold2, value, &OrvexSettings::ConcentrationTopThreshold2Changed);
}

void OrvexSettings::setConcentrationTopThreshold3(float value)
{
    assign(m_concentrationTopThreshold3, value, &OrvexSettings::ConcentrationTopThreshold3Changed);
}

void OrvexSettings::setConcentrationLowThreshold4(int value)
{
    assign(m_concentrationLowThreshold4, value, &OrvexSettings::ConcentrationLowThreshold4Changed);
}

void OrvexSettings::setConcentrationTopThreshold4(int value)
{
    assign(m_concentrationTopThreshold4, value, &OrvexSettings::ConcentrationTopThreshold4Changed);
}

void OrvexSettings::setConcentrationLowThresholdHistory(int value)
{
    assign(m_concentrationLowThresholdHistory, value, &OrvexSettings::ConcentrationLowThresholdHistoryChanged);
}

void OrvexSettings::setConcentrationTopThresholdHistory(int value)
{
    assign(m_concentrationTopThresholdHistory, value, &OrvexSettings::ConcentrationTopThresholdHistoryChanged);
}

void OrvexSettings::setConcentrationSmoothing(int value)
{
    assign(m_concentrationSmoothing, value, &OrvexSettings::ConcentrationSmoothingChanged);
}

void OrvexSettings::setConcentrationLimitTo100(bool value)
{
    assign(m_concentrationLimitTo100, value, &OrvexSettings::ConcentrationLimitTo100Changed);
}

void OrvexSettings::setSpectrumWindowSeconds(float value)
{
    assign(m_spectrumWindowSeconds, value, &OrvexSettings::SpectrumWindowSecondsChanged);
}

void OrvexSettings::setSpectrumStepSeconds(float value)
{
    assign(m_spectrumStepSeconds, value, &OrvexSettings::SpectrumStepSecondsChanged);
}

void OrvexSettings::setSpectrumHanningPercent(float value)
{
    assign(m_spectrumHanningPercent, value, &OrvexSettings::SpectrumHanningPercentChanged);
}

void OrvexSettings::setAPIEnabled(bool value)
{
    assign(m_apiEnabled, value, &OrvexSettings::APIEnabledChanged);
}

void OrvexSettings::setAPIPort(int value)
{
    assign(m_apiPort, value, &OrvexSettings::APIPortChanged);
}

void OrvexSettings::setAPIKey(QString value)
{
    assign(m_apiKey, value, &OrvexSettings::APIKeyChanged);
}

void OrvexSettings::setEngineNodes(int value)
{
    assign(m_engineNodes, value, &OrvexSettings::EngineNodesChanged);
}

void OrvexSettings::setCustomAlgorithms(QString value)
{
    assign(m_customAlgorithms, value, &OrvexSettings::CustomAlgorithmsChanged);
}

void OrvexSettings::setDeviceMontages(QString value)
{
    assign(m_deviceMontages, value, &OrvexSettings::DeviceMontagesChanged);
}
