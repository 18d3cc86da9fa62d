#pragma once

#include "settings/KxSettings.h"

#include <QString>

// The application's settings: common options, filters, recording, the two mental-state
// indices, the spectrum and the command interface. A cut-off of 0 turns that filter off.
class OrvexSettings : public KxSettings
{
    Q_OBJECT

    Q_PROPERTY(int StorageTime READ getStorageTime WRITE setStorageTime NOTIFY StorageTimeChanged)
    Q_CLASSINFO("StorageTimeCategory", "1.Common")
    Q_CLASSINFO("StorageTimeDefault", "10")
    Q_CLASSINFO("StorageTimeMinimum", "1")
    Q_CLASSINFO("StorageTimeMaximum", "3600")
    Q_CLASSINFO("StorageTimeStep", "1")
    Q_CLASSINFO("StorageTimeSuffix", "s")
    Q_CLASSINFO("StorageTimeEditable", "true")
    Q_CLASSINFO("StorageTimeDisplayName", "Data storage time")
    Q_CLASSINFO("StorageTimeDescription", "Seconds of signal kept in memory for the screens and for clients")

    Q_PROPERTY(QString FavouriteDevice READ getFavouriteDevice WRITE setFavouriteDevice NOTIFY FavouriteDeviceChanged)
    Q_CLASSINFO("FavouriteDeviceCategory", "1.Common")
    Q_CLASSINFO("FavouriteDeviceDefault", "\"\"")
    Q_CLASSINFO("FavouriteDeviceEditable", "true")
    Q_CLASSINFO("FavouriteDeviceDisplayName", "Favourite device")
    Q_CLASSINFO("FavouriteDeviceDescription", "Device connected first when found; empty for none")

    Q_PROPERTY(bool StartFavouriteDevice READ getStartFavouriteDevice WRITE setStartFavouriteDevice NOTIFY StartFavouriteDeviceChanged)
    Q_CLASSINFO("StartFavouriteDeviceCategory", "1.Common")
    Q_CLASSINFO("StartFavouriteDeviceDefault", "true")
    Q_CLASSINFO("StartFavouriteDeviceEditable", "true")
    Q_CLASSINFO("StartFavouriteDeviceDisplayName", "Start the favourite device")
    Q_CLASSINFO("StartFavouriteDeviceDescription", "Start the favourite device as soon as the search finds it")

    Q_PROPERTY(bool LoggingEnabled READ getLoggingEnabled WRITE setLoggingEnabled NOTIFY LoggingEnabledChanged)
    Q_CLASSINFO("LoggingEnabledCategory", "1.Common")
    Q_CLASSINFO("LoggingEnabledDefault", "false")
    Q_CLASSINFO("LoggingEnabledEditable", "true")
    Q_CLASSINFO("LoggingEnabledDisplayName", "Write a log file")
    Q_CLASSINFO("LoggingEnabledDescription", "Keep a time-stamped log of the session in the documents folder")

    Q_PROPERTY(float HPF READ getHPF WRITE setHPF NOTIFY HPFChanged)
    Q_CLASSINFO("HPFCategory", "2.Filters")
    Q_CLASSINFO("HPFDefault", "2.0f")
    Q_CLASSINFO("HPFMinimum", "0.0")
    Q_CLASSINFO("HPFMaximum", "100.0")
    Q_CLASSINFO("HPFStep", "0.1")
    Q_CLASSINFO("HPFPrecision", "1")
    Q_CLASSINFO("HPFSuffix", "Hz")
    Q_CLASSINFO("HPFEditable", "true")
    Q_CLASSINFO("HPFDisplayName", "High-pass filter")
    Q_CLASSINFO("HPFDescription", "Cut-off frequency of the high-pass filter; 0 turns it off")

    Q_PROPERTY(float LPF READ getLPF WRITE setLPF NOTIFY LPFChanged)
    Q_CLASSINFO("LPFCategory", "2.Filters")
    Q_CLASSINFO("LPFDefault", "40.0f")
    Q_CLASSINFO("LPFMinimum", "0.0")
    Q_CLASSINFO("LPFMaximum", "500.0")
    Q_CLASSINFO("LPFStep", "0.1")
    Q_CLASSINFO("LPFPrecision", "1")
    Q_CLASSINFO("LPFSuffix", "Hz")
    Q_CLASSINFO("LPFEditable", "true")
    Q_CLASSINFO("LPFDisplayName", "Low-pass filter")
    Q_CLASSINFO("LPFDescription", "Cut-off frequency of the low-pass filter; 0 turns it off")

    Q_PROPERTY(float BSF READ getBSF WRITE setBSF NOTIFY BSFChanged)
    Q_CLASSINFO("BSFCategory", "2.Filters")
    Q_CLASSINFO("BSFDefault", "50.0f")
    Q_CLASSINFO("BSFMinimum", "0.0")
    Q_CLASSINFO("BSFMaximum", "500.0")
    Q_CLASSINFO("BSFStep", "0.1")
    Q_CLASSINFO("BSFPrecision", "1")
    Q_CLASSINFO("BSFSuffix", "Hz")
    Q_CLASSINFO("BSFEditable", "true")
    Q_CLASSINFO("BSFDisplayName", "Notch filter")
    Q_CLASSINFO("BSFDescription", "Mains frequency to remove; 0 turns it off")

    Q_PROPERTY(float BSF2 READ getBSF2 WRITE setBSF2 NOTIFY BSF2Changed)
    Q_CLASSINFO("BSF2Category", "2.Filters")
    Q_CLASSINFO("BSF2Default", "0.0f")
    Q_CLASSINFO("BSF2Minimum", "0.0")
    Q_CLASSINFO("BSF2Maximum", "500.0")
    Q_CLASSINFO("BSF2Step", "0.1")
    Q_CLASSINFO("BSF2Precision", "1")
    Q_CLASSINFO("BSF2Suffix", "Hz")
    Q_CLASSINFO("BSF2Editable", "true")
    Q_CLASSINFO("BSF2DisplayName", "Second notch filter")
    Q_CLASSINFO("BSF2Description", "A further frequency to remove; 0 turns it off")

    Q_PROPERTY(int HPFOrder READ getHPFOrder WRITE setHPFOrder NOTIFY HPFOrderChanged)
    Q_CLASSINFO("HPFOrderCategory", "2.Filters")
    Q_CLASSINFO("HPFOrderDefault", "4")
    Q_CLASSINFO("HPFOrderMinimum", "1")
    Q_CLASSINFO("HPFOrderMaximum", "8")
    Q_CLASSINFO("HPFOrderStep", "1")
    Q_CLASSINFO("HPFOrderEditable", "true")
    Q_CLASSINFO("HPFOrderDisplayName", "High-pass order")
    Q_CLASSINFO("HPFOrderDescription", "Order of the high-pass filter")

    Q_PROPERTY(int LPFOrder READ getLPFOrder WRITE setLPFOrder NOTIFY LPFOrderChanged)
    Q_CLASSINFO("LPFOrderCategory", "2.Filters")
    Q_CLASSINFO("LPFOrderDefault", "4")
    Q_CLASSINFO("LPFOrderMinimum", "1")
    Q_CLASSINFO("LPFOrderMaximum", "8")
    Q_CLASSINFO("LPFOrderStep", "1")
    Q_CLASSINFO("LPFOrderEditable", "true")
    Q_CLASSINFO("LPFOrderDisplayName", "Low-pass order")
    Q_CLASSINFO("LPFOrderDescription", "Order of the low-pass filter")

    Q_PROPERTY(bool UseFIR READ getUseFIR WRITE setUseFIR NOTIFY UseFIRChanged)
    Q_CLASSINFO("UseFIRCategory", "2.Filters")
    Q_CLASSINFO("UseFIRDefault", "true")
    Q_CLASSINFO("UseFIREditable", "true")
    Q_CLASSINFO("UseFIRDisplayName", "Section filters")
    Q_CLASSINFO("UseFIRDescription", "Build the high- and low-pass filters as cascades of second-order sections")

    Q_PROPERTY(QString DataFolder READ getDataFolder WRITE setDataFolder NOTIFY DataFolderChanged)
    Q_CLASSINFO("DataFolderCategory", "3.Recording")
    Q_CLASSINFO("DataFolderDefault", "\"\"")
    Q_CLASSINFO("DataFolderEditable", "true")
    Q_CLASSINFO("DataFolderSpecialType", "PickFolder")
    Q_CLASSINFO("DataFolderPlaceholder", "Documents/OrvexPro/Records")
    Q_CLASSINFO("DataFolderDisplayName", "Data folder")
    Q_CLASSINFO("DataFolderDescription", "Folder of new recordings; empty for Documents/OrvexPro/Records")

    Q_PROPERTY(bool RecordRawEDF READ getRecordRawEDF WRITE setRecordRawEDF NOTIFY RecordRawEDFChanged)
    Q_CLASSINFO("RecordRawEDFCategory", "3.Recording")
    Q_CLASSINFO("RecordRawEDFDefault", "false")
    Q_CLASSINFO("RecordRawEDFEditable", "true")
    Q_CLASSINFO("RecordRawEDFDisplayName", "Record raw signal")
    Q_CLASSINFO("RecordRawEDFDescription", "Also write the unfiltered device channels to a .raw.bdf file")

    Q_PROPERTY(bool ResumeRecordingAfterReconnect READ getResumeRecordingAfterReconnect WRITE
                   setResumeRecordingAfterReconnect NOTIFY ResumeRecordingAfterReconnectChanged)
    Q_CLASSINFO("ResumeRecordingAfterReconnectCategory", "3.Recording")
    Q_CLASSINFO("ResumeRecordingAfterReconnectDefault", "true")
    Q_CLASSINFO("ResumeRecordingAfterReconnectEditable", "true")
    Q_CLASSINFO("ResumeRecordingAfterReconnectDisplayName", "Resume recording after a reconnection")
    Q_CLASSINFO("ResumeRecordingAfterReconnectDescription",
                "Continue a recording that a lost device paused as soon as the device streams again")

    Q_PROPERTY(bool RecordOXD READ getRecordOXD WRITE setRecordOXD NOTIFY RecordOXDChanged)
    Q_CLASSINFO("RecordOXDCategory", "3.Recording")
    Q_CLASSINFO("RecordOXDDefault", "true")
    Q_CLASSINFO("RecordOXDEditable", "true")
    Q_CLASSINFO("RecordOXDDisplayName", "Record OXD side file")
    Q_CLASSINFO("RecordOXDDescription", "Also write the lossless .oxd companion file")

    Q_PROPERTY(QString MeditationChannels READ getMeditationChannels WRITE setMeditationChannels NOTIFY MeditationChannelsChanged)
    Q_CLASSINFO("MeditationChannelsCategory", "4.Meditation")
    Q_CLASSINFO("MeditationChannelsDefault", "\"O1,O2\"")
    Q_CLASSINFO("MeditationChannelsEditable", "true")
    Q_CLASSINFO("MeditationChannelsDisplayName", "Channels")
    Q_CLASSINFO("MeditationChannelsDescription", "Comma-separated names of the channels the meditation index uses")

    Q_PROPERTY(float MeditationMinFrequency READ getMeditationMinFrequency WRITE setMeditationMinFrequency NOTIFY MeditationMinFrequencyChanged)
    Q_CLASSINFO("MeditationMinFrequencyCategory", "4.Meditation")
    Q_CLASSINFO("MeditationMinFrequencyDefault", "8.0f")
    Q_CLASSINFO("MeditationMinFrequencyMinimum", "0.5")
    Q_CLASSINFO("MeditationMinFrequencyMaximum", "100.0")
    Q_CLASSINFO("MeditationMinFrequencyStep", "0.5")
    Q_CLASSINFO("MeditationMinFrequencyPrecision", "1")
    Q_CLASSINFO("MeditationMinFrequencySuffix", "Hz")
    Q_CLASSINFO("MeditationMinFrequencyEditable", "true")
    Q_CLASSINFO("MeditationMinFrequencyDisplayName", "Lowest frequency")
    Q_CLASSINFO("MeditationMinFrequencyDescription", "Lower edge of the band the meditation index measures")

    Q_PROPERTY(float MeditationMaxFrequency READ getMeditationMaxFrequency WRITE setMeditationMaxFrequency NOTIFY MeditationMaxFrequencyChanged)
    Q_CLASSINFO("MeditationMaxFrequencyCategory", "4.Meditation")
    Q_CLASSINFO("MeditationMaxFrequencyDefault", "14.0f")
    Q_CLASSINFO("MeditationMaxFrequencyMinimum", "0.5")
    Q_CLASSINFO("MeditationMaxFrequencyMaximum", "100.0")
    Q_CLASSINFO("MeditationMaxFrequencyStep", "0.5")
    Q_CLASSINFO("MeditationMaxFrequencyPrecision", "1")
    Q_CLASSINFO("MeditationMaxFrequencySuffix", "Hz")
    Q_CLASSINFO("MeditationMaxFrequencyEditable", "true")
    Q_CLASSINFO("MeditationMaxFrequencyDisplayName", "Highest frequency")
    Q_CLASSINFO("MeditationMaxFrequencyDescription", "Upper edge of the band the meditation index measures")

    Q_PROPERTY(float MeditationLowThreshold1 READ getMeditationLowThreshold1 WRITE setMeditationLowThreshold1 NOTIFY MeditationLowThreshold1Changed)
    Q_CLASSINFO("MeditationLowThreshold1Category", "4.Meditation")
    Q_CLASSINFO("MeditationLowThreshold1Default", "0.0f")
    Q_CLASSINFO("MeditationLowThreshold1Minimum", "0.0")
    Q_CLASSINFO("MeditationLowThreshold1Maximum", "100.0")
    Q_CLASSINFO("MeditationLowThreshold1Step", "0.1")
    Q_CLASSINFO("MeditationLowThreshold1Precision", "1")
    Q_CLASSINFO("MeditationLowThreshold1Suffix", "%")
    Q_CLASSINFO("MeditationLowThreshold1Editable", "true")
    Q_CLASSINFO("MeditationLowThreshold1DisplayName", "Low threshold 1")
    Q_CLASSINFO("MeditationLowThreshold1Description", "Starting value of the adaptive low level")

    Q_PROPERTY(float MeditationLowThreshold2 READ getMeditationLowThreshold2 WRITE setMeditationLowThreshold2 NOTIFY MeditationLowThreshold2Changed)
    Q_CLASSINFO("MeditationLowThreshold2Category", "4.Meditation")
    Q_CLASSINFO("MeditationLowThreshold2Default", "0.0f")
    Q_CLASSINFO("MeditationLowThreshold2Minimum", "0.0")
    Q_CLASSINFO("MeditationLowThreshold2Maximum", "100.0")
    Q_CLASSINFO("MeditationLowThreshold2Step", "0.1")
    Q_CLASSINFO("MeditationLowThreshold2Precision", "1")
    Q_CLASSINFO("MeditationLowThreshold2Suffix", "%")
    Q_CLASSINFO("MeditationLowThreshold2Editable", "true")
    Q_CLASSINFO("MeditationLowThreshold2DisplayName", "Low threshold 2")
    Q_CLASSINFO("MeditationLowThreshold2Description", "Lowest allowed value of the adaptive low level")

    Q_PROPERTY(float MeditationLowThreshold3 READ getMeditationLowThreshold3 WRITE setMeditationLowThreshold3 NOTIFY MeditationLowThreshold3Changed)
    Q_CLASSINFO("MeditationLowThreshold3Category", "4.Meditation")
    Q_CLASSINFO("MeditationLowThreshold3Default", "100.0f")
    Q_CLASSINFO("MeditationLowThreshold3Minimum", "0.0")
    Q_CLASSINFO("MeditationLowThreshold3Maximum", "100.0")
    Q_CLASSINFO("MeditationLowThreshold3Step", "0.1")
    Q_CLASSINFO("MeditationLowThreshold3Precision", "1")
    Q_CLASSINFO("MeditationLowThreshold3Suffix", "%")
    Q_CLASSINFO("MeditationLowThreshold3Editable", "true")
    Q_CLASSINFO("MeditationLowThreshold3DisplayName", "Low threshold 3")
    Q_CLASSINFO("MeditationLowThreshold3Description", "Highest allowed value of the adaptive low level")

    Q_PROPERTY(float MeditationTopThreshold1 READ getMeditationTopThreshold1 WRITE setMeditationTopThreshold1 NOTIFY MeditationTopThreshold1Changed)
    Q_CLASSINFO("MeditationTopThreshold1Category", "4.Meditation")
    Q_CLASSINFO("MeditationTopThreshold1Default", "100.0f")
    Q_CLASSINFO("MeditationTopThreshold1Minimum", "0.0")
    Q_CLASSINFO("MeditationTopThreshold1Maximum", "100.0")
    Q_CLASSINFO("MeditationTopThreshold1Step", "0.1")
    Q_CLASSINFO("MeditationTopThreshold1Precision", "1")
    Q_CLASSINFO("MeditationTopThreshold1Suffix", "%")
    Q_CLASSINFO("MeditationTopThreshold1Editable", "true")
    Q_CLASSINFO("MeditationTopThreshold1DisplayName", "Top threshold 1")
    Q_CLASSINFO("MeditationTopThreshold1Description", "Starting value of the adaptive top level")

    Q_PROPERTY(float MeditationTopThreshold2 READ getMeditationTopThreshold2 WRITE setMeditationTopThreshold2 NOTIFY MeditationTopThreshold2Changed)
    Q_CLASSINFO("MeditationTopThreshold2Category", "4.Meditation")
    Q_CLASSINFO("MeditationTopThreshold2Default", "0.0f")
    Q_CLASSINFO("MeditationTopThreshold2Minimum", "0.0")
    Q_CLASSINFO("MeditationTopThreshold2Maximum", "100.0")
    Q_CLASSINFO("MeditationTopThreshold2Step", "0.1")
    Q_CLASSINFO("MeditationTopThreshold2Precision", "1")
    Q_CLASSINFO("MeditationTopThreshold2Suffix", "%")
    Q_CLASSINFO("MeditationTopThreshold2Editable", "true")
    Q_CLASSINFO("MeditationTopThreshold2DisplayName", "Top threshold 2")
    Q_CLASSINFO("MeditationTopThreshold2Description", "Lowest allowed value of the adaptive top level")

    Q_PROPERTY(float MeditationTopThreshold3 READ getMeditationTopThreshold3 WRITE setMeditationTopThreshold3 NOTIFY MeditationTopThreshold3Changed)
    Q_CLASSINFO("MeditationTopThreshold3Category", "4.Meditation")
    Q_CLASSINFO("MeditationTopThreshold3Default", "100.0f")
    Q_CLASSINFO("MeditationTopThreshold3Minimum", "0.0")
    Q_CLASSINFO("MeditationTopThreshold3Maximum", "100.0")
    Q_CLASSINFO("MeditationTopThreshold3Step", "0.1")
    Q_CLASSINFO("MeditationTopThreshold3Precision", "1")
    Q_CLASSINFO("MeditationTopThreshold3Suffix", "%")
    Q_CLASSINFO("MeditationTopThreshold3Editable", "true")
    Q_CLASSINFO("MeditationTopThreshold3DisplayName", "Top threshold 3")
    Q_CLASSINFO("MeditationTopThreshold3Description", "Highest allowed value of the adaptive top level")

    Q_PROPERTY(int MeditationLowThreshold4 READ getMeditationLowThreshold4 WRITE setMeditationLowThreshold4 NOTIFY MeditationLowThreshold4Changed)
    Q_CLASSINFO("MeditationLowThreshold4Category", "4.Meditation")
    Q_CLASSINFO("MeditationLowThreshold4Default", "1000")
    Q_CLASSINFO("MeditationLowThreshold4Minimum", "1")
    Q_CLASSINFO("MeditationLowThreshold4Maximum", "100000")
    Q_CLASSINFO("MeditationLowThreshold4Step", "1")
    Q_CLASSINFO("MeditationLowThreshold4Editable", "true")
    Q_CLASSINFO("MeditationLowThreshold4DisplayName", "Low threshold 4")
    Q_CLASSINFO("MeditationLowThreshold4Description", "Values kept for the low level; the longer of the two meditation histories is kept")

    Q_PROPERTY(int MeditationTopThreshold4 READ getMeditationTopThreshold4 WRITE setMeditationTopThreshold4 NOTIFY MeditationTopThreshold4Changed)
    Q_CLASSINFO("MeditationTopThreshold4Category", "4.Meditation")
    Q_CLASSINFO("MeditationTopThreshold4Default", "1000")
    Q_CLASSINFO("MeditationTopThreshold4Minimum", "1")
    Q_CLASSINFO("MeditationTopThreshold4Maximum", "100000")
    Q_CLASSINFO("MeditationTopThreshold4Step", "1")
    Q_CLASSINFO("MeditationTopThreshold4Editable", "true")
    Q_CLASSINFO("MeditationTopThreshold4DisplayName", "Top threshold 4")
    Q_CLASSINFO("MeditationTopThreshold4Description", "Values kept for the top level; the longer of the two meditation histories is kept")

    Q_PROPERTY(int MeditationLowThresholdHistory READ getMeditationLowThresholdHistory WRITE setMeditationLowThresholdHistory NOTIFY MeditationLowThresholdHistoryChanged)
    Q_CLASSINFO("MeditationLowThresholdHistoryCategory", "4.Meditation")
    Q_CLASSINFO("MeditationLowThresholdHistoryDefault", "1000")
    Q_CLASSINFO("MeditationLowThresholdHistoryMinimum", "1")
    Q_CLASSINFO("MeditationLowThresholdHistoryMaximum", "100000")
    Q_CLASSINFO("MeditationLowThresholdHistoryStep", "1")
    Q_CLASSINFO("MeditationLowThresholdHistoryEditable", "true")
    Q_CLASSINFO("MeditationLowThresholdHistoryDisplayName", "Low level history")
    Q_CLASSINFO("MeditationLowThresholdHistoryDescription", "Number of newest values the low level is estimated from")

    Q_PROPERTY(int MeditationTopThresholdHistory READ getMeditationTopThresholdHistory WRITE setMeditationTopThresholdHistory NOTIFY MeditationTopThresholdHistoryChanged)
    Q_CLASSINFO("MeditationTopThresholdHistoryCategory", "4.Meditation")
    Q_CLASSINFO("MeditationTopThresholdHistoryDefault", "10")
    Q_CLASSINFO("MeditationTopThresholdHistoryMinimum", "1")
    Q_CLASSINFO("MeditationTopThresholdHistoryMaximum", "100000")
    Q_CLASSINFO("MeditationTopThresholdHistoryStep", "1")
    Q_CLASSINFO("MeditationTopThresholdHistoryEditable", "true")
    Q_CLASSINFO("MeditationTopThresholdHistoryDisplayName", "Top level history")
    Q_CLASSINFO("MeditationTopThresholdHistoryDescription", "Number of newest values the top level is estimated from")

    Q_PROPERTY(int MeditationSmoothing READ getMeditationSmoothing WRITE setMeditationSmoothing NOTIFY MeditationSmoothingChanged)
    Q_CLASSINFO("MeditationSmoothingCategory", "4.Meditation")
    Q_CLASSINFO("MeditationSmoothingDefault", "16")
    Q_CLASSINFO("MeditationSmoothingMinimum", "1")
    Q_CLASSINFO("MeditationSmoothingMaximum", "255")
    Q_CLASSINFO("MeditationSmoothingStep", "1")
    Q_CLASSINFO("MeditationSmoothingEditable", "true")
    Q_CLASSINFO("MeditationSmoothingDisplayName", "Smoothing")
    Q_CLASSINFO("MeditationSmoothingDescription", "Number of readings averaged into the shown level")

    Q_PROPERTY(bool MeditationLimitTo100 READ getMeditationLimitTo100 WRITE setMeditationLimitTo100 NOTIFY MeditationLimitTo100Changed)
    Q_CLASSINFO("MeditationLimitTo100Category", "4.Meditation")
    Q_CLASSINFO("MeditationLimitTo100Default", "true")
    Q_CLASSINFO("MeditationLimitTo100Editable", "true")
    Q_CLASSINFO("MeditationLimitTo100DisplayName", "Limit to 100")
    Q_CLASSINFO("MeditationLimitTo100Description", "Never report the level above 100")

    Q_PROPERTY(QString ConcentrationChannels READ getConcentrationChannels WRITE setConcentrationChannels NOTIFY ConcentrationChannelsChanged)
    Q_CLASSINFO("ConcentrationChannelsCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationChannelsDefault", "\"Fp1,Fp2\"")
    Q_CLASSINFO("ConcentrationChannelsEditable", "true")
    Q_CLASSINFO("ConcentrationChannelsDisplayName", "Channels")
    Q_CLASSINFO("ConcentrationChannelsDescription", "Comma-separated names of the channels the concentration index uses")

    Q_PROPERTY(float ConcentrationMinFrequency READ getConcentrationMinFrequency WRITE setConcentrationMinFrequency NOTIFY ConcentrationMinFrequencyChanged)
    Q_CLASSINFO("ConcentrationMinFrequencyCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationMinFrequencyDefault", "14.0f")
    Q_CLASSINFO("ConcentrationMinFrequencyMinimum", "0.5")
    Q_CLASSINFO("ConcentrationMinFrequencyMaximum", "100.0")
    Q_CLASSINFO("ConcentrationMinFrequencyStep", "0.5")
    Q_CLASSINFO("ConcentrationMinFrequencyPrecision", "1")
    Q_CLASSINFO("ConcentrationMinFrequencySuffix", "Hz")
    Q_CLASSINFO("ConcentrationMinFrequencyEditable", "true")
    Q_CLASSINFO("ConcentrationMinFrequencyDisplayName", "Lowest frequency")
    Q_CLASSINFO("ConcentrationMinFrequencyDescription", "Lower edge of the band the concentration index measures")

    Q_PROPERTY(float ConcentrationMaxFrequency READ getConcentrationMaxFrequency WRITE setConcentrationMaxFrequency NOTIFY ConcentrationMaxFrequencyChanged)
    Q_CLASSINFO("ConcentrationMaxFrequencyCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationMaxFrequencyDefault", "35.0f")
    Q_CLASSINFO("ConcentrationMaxFrequencyMinimum", "0.5")
    Q_CLASSINFO("ConcentrationMaxFrequencyMaximum", "100.0")
    Q_CLASSINFO("ConcentrationMaxFrequencyStep", "0.5")
    Q_CLASSINFO("ConcentrationMaxFrequencyPrecision", "1")
    Q_CLASSINFO("ConcentrationMaxFrequencySuffix", "Hz")
    Q_CLASSINFO("ConcentrationMaxFrequencyEditable", "true")
    Q_CLASSINFO("ConcentrationMaxFrequencyDisplayName", "Highest frequency")
    Q_CLASSINFO("ConcentrationMaxFrequencyDescription", "Upper edge of the band the concentration index measures")

    Q_PROPERTY(float ConcentrationLowThreshold1 READ getConcentrationLowThreshold1 WRITE setConcentrationLowThreshold1 NOTIFY ConcentrationLowThreshold1Changed)
    Q_CLASSINFO("ConcentrationLowThreshold1Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationLowThreshold1Default", "0.0f")
    Q_CLASSINFO("ConcentrationLowThreshold1Minimum", "0.0")
    Q_CLASSINFO("ConcentrationLowThreshold1Maximum", "100.0")
    Q_CLASSINFO("ConcentrationLowThreshold1Step", "0.1")
    Q_CLASSINFO("ConcentrationLowThreshold1Precision", "1")
    Q_CLASSINFO("ConcentrationLowThreshold1Suffix", "%")
    Q_CLASSINFO("ConcentrationLowThreshold1Editable", "true")
    Q_CLASSINFO("ConcentrationLowThreshold1DisplayName", "Low threshold 1")
    Q_CLASSINFO("ConcentrationLowThreshold1Description", "Starting value of the adaptive low level")

    Q_PROPERTY(float ConcentrationLowThreshold2 READ getConcentrationLowThreshold2 WRITE setConcentrationLowThreshold2 NOTIFY ConcentrationLowThreshold2Changed)
    Q_CLASSINFO("ConcentrationLowThreshold2Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationLowThreshold2Default", "0.0f")
    Q_CLASSINFO("ConcentrationLowThreshold2Minimum", "0.0")
    Q_CLASSINFO("ConcentrationLowThreshold2Maximum", "100.0")
    Q_CLASSINFO("ConcentrationLowThreshold2Step", "0.1")
    Q_CLASSINFO("ConcentrationLowThreshold2Precision", "1")
    Q_CLASSINFO("ConcentrationLowThreshold2Suffix", "%")
    Q_CLASSINFO("ConcentrationLowThreshold2Editable", "true")
    Q_CLASSINFO("ConcentrationLowThreshold2DisplayName", "Low threshold 2")
    Q_CLASSINFO("ConcentrationLowThreshold2Description", "Lowest allowed value of the adaptive low level")

    Q_PROPERTY(float ConcentrationLowThreshold3 READ getConcentrationLowThreshold3 WRITE setConcentrationLowThreshold3 NOTIFY ConcentrationLowThreshold3Changed)
    Q_CLASSINFO("ConcentrationLowThreshold3Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationLowThreshold3Default", "100.0f")
    Q_CLASSINFO("ConcentrationLowThreshold3Minimum", "0.0")
    Q_CLASSINFO("ConcentrationLowThreshold3Maximum", "100.0")
    Q_CLASSINFO("ConcentrationLowThreshold3Step", "0.1")
    Q_CLASSINFO("ConcentrationLowThreshold3Precision", "1")
    Q_CLASSINFO("ConcentrationLowThreshold3Suffix", "%")
    Q_CLASSINFO("ConcentrationLowThreshold3Editable", "true")
    Q_CLASSINFO("ConcentrationLowThreshold3DisplayName", "Low threshold 3")
    Q_CLASSINFO("ConcentrationLowThreshold3Description", "Highest allowed value of the adaptive low level")

    Q_PROPERTY(float ConcentrationTopThreshold1 READ getConcentrationTopThreshold1 WRITE setConcentrationTopThreshold1 NOTIFY ConcentrationTopThreshold1Changed)
    Q_CLASSINFO("ConcentrationTopThreshold1Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationTopThreshold1Default", "100.0f")
    Q_CLASSINFO("ConcentrationTopThreshold1Minimum", "0.0")
    Q_CLASSINFO("ConcentrationTopThreshold1Maximum", "100.0")
    Q_CLASSINFO("ConcentrationTopThreshold1Step", "0.1")
    Q_CLASSINFO("ConcentrationTopThreshold1Precision", "1")
    Q_CLASSINFO("ConcentrationTopThreshold1Suffix", "%")
    Q_CLASSINFO("ConcentrationTopThreshold1Editable", "true")
    Q_CLASSINFO("ConcentrationTopThreshold1DisplayName", "Top threshold 1")
    Q_CLASSINFO("ConcentrationTopThreshold1Description", "Starting value of the adaptive top level")

    Q_PROPERTY(float ConcentrationTopThreshold2 READ getConcentrationTopThreshold2 WRITE setConcentrationTopThreshold2 NOTIFY ConcentrationTopThreshold2Changed)
    Q_CLASSINFO("ConcentrationTopThreshold2Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationTopThreshold2Default", "0.0f")
    Q_CLASSINFO("ConcentrationTopThreshold2Minimum", "0.0")
    Q_CLASSINFO("ConcentrationTopThreshold2Maximum", "100.0")
    Q_CLASSINFO("ConcentrationTopThreshold2Step", "0.1")
    Q_CLASSINFO("ConcentrationTopThreshold2Precision", "1")
    Q_CLASSINFO("ConcentrationTopThreshold2Suffix", "%")
    Q_CLASSINFO("ConcentrationTopThreshold2Editable", "true")
    Q_CLASSINFO("ConcentrationTopThreshold2DisplayName", "Top threshold 2")
    Q_CLASSINFO("ConcentrationTopThreshold2Description", "Lowest allowed value of the adaptive top level")

    Q_PROPERTY(float ConcentrationTopThreshold3 READ getConcentrationTopThreshold3 WRITE setConcentrationTopThreshold3 NOTIFY ConcentrationTopThreshold3Changed)
    Q_CLASSINFO("ConcentrationTopThreshold3Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationTopThreshold3Default", "100.0f")
    Q_CLASSINFO("ConcentrationTopThreshold3Minimum", "0.0")
    Q_CLASSINFO("ConcentrationTopThreshold3Maximum", "100.0")
    Q_CLASSINFO("ConcentrationTopThreshold3Step", "0.1")
    Q_CLASSINFO("ConcentrationTopThreshold3Precision", "1")
    Q_CLASSINFO("ConcentrationTopThreshold3Suffix", "%")
    Q_CLASSINFO("ConcentrationTopThreshold3Editable", "true")
    Q_CLASSINFO("ConcentrationTopThreshold3DisplayName", "Top threshold 3")
    Q_CLASSINFO("ConcentrationTopThreshold3Description", "Highest allowed value of the adaptive top level")

    Q_PROPERTY(int ConcentrationLowThreshold4 READ getConcentrationLowThreshold4 WRITE setConcentrationLowThreshold4 NOTIFY ConcentrationLowThreshold4Changed)
    Q_CLASSINFO("ConcentrationLowThreshold4Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationLowThreshold4Default", "1000")
    Q_CLASSINFO("ConcentrationLowThreshold4Minimum", "1")
    Q_CLASSINFO("ConcentrationLowThreshold4Maximum", "100000")
    Q_CLASSINFO("ConcentrationLowThreshold4Step", "1")
    Q_CLASSINFO("ConcentrationLowThreshold4Editable", "true")
    Q_CLASSINFO("ConcentrationLowThreshold4DisplayName", "Low threshold 4")
    Q_CLASSINFO("ConcentrationLowThreshold4Description", "Values kept for the low level; the longer of the two concentration histories is kept")

    Q_PROPERTY(int ConcentrationTopThreshold4 READ getConcentrationTopThreshold4 WRITE setConcentrationTopThreshold4 NOTIFY ConcentrationTopThreshold4Changed)
    Q_CLASSINFO("ConcentrationTopThreshold4Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationTopThreshold4Default", "1000")
    Q_CLASSINFO("ConcentrationTopThreshold4Minimum", "1")
    Q_CLASSINFO("ConcentrationTopThreshold4Maximum", "100000")
    Q_CLASSINFO("ConcentrationTopThreshold4Step", "1")
    Q_CLASSINFO("ConcentrationTopThreshold4Editable", "true")
    Q_CLASSINFO("ConcentrationTopThreshold4DisplayName", "Top threshold 4")
    Q_CLASSINFO("ConcentrationTopThreshold4Description", "Values kept for the top level; the longer of the two concentration histories is kept")

    Q_PROPERTY(int ConcentrationLowThresholdHistory READ getConcentrationLowThresholdHistory WRITE setConcentrationLowThresholdHistory NOTIFY ConcentrationLowThresholdHistoryChanged)
    Q_CLASSINFO("ConcentrationLowThresholdHistoryCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryDefault", "1000")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryMinimum", "1")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryMaximum", "100000")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryStep", "1")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryEditable", "true")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryDisplayName", "Low level history")
    Q_CLASSINFO("ConcentrationLowThresholdHistoryDescription", "Number of newest values the low level is estimated from")

    Q_PROPERTY(int ConcentrationTopThresholdHistory READ getConcentrationTopThresholdHistory WRITE setConcentrationTopThresholdHistory NOTIFY ConcentrationTopThresholdHistoryChanged)
    Q_CLASSINFO("ConcentrationTopThresholdHistoryCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryDefault", "10")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryMinimum", "1")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryMaximum", "100000")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryStep", "1")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryEditable", "true")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryDisplayName", "Top level history")
    Q_CLASSINFO("ConcentrationTopThresholdHistoryDescription", "Number of newest values the top level is estimated from")

    Q_PROPERTY(int ConcentrationSmoothing READ getConcentrationSmoothing WRITE setConcentrationSmoothing NOTIFY ConcentrationSmoothingChanged)
    Q_CLASSINFO("ConcentrationSmoothingCategory", "5.Concentration")
    Q_CLASSINFO("ConcentrationSmoothingDefault", "16")
    Q_CLASSINFO("ConcentrationSmoothingMinimum", "1")
    Q_CLASSINFO("ConcentrationSmoothingMaximum", "255")
    Q_CLASSINFO("ConcentrationSmoothingStep", "1")
    Q_CLASSINFO("ConcentrationSmoothingEditable", "true")
    Q_CLASSINFO("ConcentrationSmoothingDisplayName", "Smoothing")
    Q_CLASSINFO("ConcentrationSmoothingDescription", "Number of readings averaged into the shown level")

    Q_PROPERTY(bool ConcentrationLimitTo100 READ getConcentrationLimitTo100 WRITE setConcentrationLimitTo100 NOTIFY ConcentrationLimitTo100Changed)
    Q_CLASSINFO("ConcentrationLimitTo100Category", "5.Concentration")
    Q_CLASSINFO("ConcentrationLimitTo100Default", "true")
    Q_CLASSINFO("ConcentrationLimitTo100Editable", "true")
    Q_CLASSINFO("ConcentrationLimitTo100DisplayName", "Limit to 100")
    Q_CLASSINFO("ConcentrationLimitTo100Description", "Never report the level above 100")

    Q_PROPERTY(float SpectrumWindowSeconds READ getSpectrumWindowSeconds WRITE setSpectrumWindowSeconds NOTIFY SpectrumWindowSecondsChanged)
    Q_CLASSINFO("SpectrumWindowSecondsCategory", "6.Spectrum")
    Q_CLASSINFO("SpectrumWindowSecondsDefault", "4.0f")
    Q_CLASSINFO("SpectrumWindowSecondsMinimum", "0.1")
    Q_CLASSINFO("SpectrumWindowSecondsMaximum", "60.0")
    Q_CLASSINFO("SpectrumWindowSecondsStep", "0.1")
    Q_CLASSINFO("SpectrumWindowSecondsPrecision", "1")
    Q_CLASSINFO("SpectrumWindowSecondsSuffix", "s")
    Q_CLASSINFO("SpectrumWindowSecondsEditable", "true")
    Q_CLASSINFO("SpectrumWindowSecondsDisplayName", "Spectrum window")
    Q_CLASSINFO("SpectrumWindowSecondsDescription", "Length of the signal each spectrum is computed from")

    Q_PROPERTY(float SpectrumStepSeconds READ getSpectrumStepSeconds WRITE setSpectrumStepSeconds NOTIFY SpectrumStepSecondsChanged)
    Q_CLASSINFO("SpectrumStepSecondsCategory", "6.Spectrum")
    Q_CLASSINFO("SpectrumStepSecondsDefault", "0.1f")
    Q_CLASSINFO("SpectrumStepSecondsMinimum", "0.01")
    Q_CLASSINFO("SpectrumStepSecondsMaximum", "10.0")
    Q_CLASSINFO("SpectrumStepSecondsStep", "0.01")
    Q_CLASSINFO("SpectrumStepSecondsPrecision", "2")
    Q_CLASSINFO("SpectrumStepSecondsSuffix", "s")
    Q_CLASSINFO("SpectrumStepSecondsEditable", "true")
    Q_CLASSINFO("SpectrumStepSecondsDisplayName", "Spectrum step")
    Q_CLASSINFO("SpectrumStepSecondsDescription", "Time between two spectra")

    Q_PROPERTY(float SpectrumHanningPercent READ getSpectrumHanningPercent WRITE setSpectrumHanningPercent NOTIFY SpectrumHanningPercentChanged)
    Q_CLASSINFO("SpectrumHanningPercentCategory", "6.Spectrum")
    Q_CLASSINFO("SpectrumHanningPercentDefault", "10.0f")
    Q_CLASSINFO("SpectrumHanningPercentMinimum", "0.0")
    Q_CLASSINFO("SpectrumHanningPercentMaximum", "50.0")
    Q_CLASSINFO("SpectrumHanningPercentStep", "1")
    Q_CLASSINFO("SpectrumHanningPercentPrecision", "0")
    Q_CLASSINFO("SpectrumHanningPercentSuffix", "%")
    Q_CLASSINFO("SpectrumHanningPercentEditable", "true")
    Q_CLASSINFO("SpectrumHanningPercentDisplayName", "Window taper")
    Q_CLASSINFO("SpectrumHanningPercentDescription", "Share of the window tapered at each end")

    Q_PROPERTY(bool APIEnabled READ getAPIEnabled WRITE setAPIEnabled NOTIFY APIEnabledChanged)
    Q_CLASSINFO("APIEnabledCategory", "7.API")
    Q_CLASSINFO("APIEnabledDefault", "true")
    Q_CLASSINFO("APIEnabledEditable", "true")
    Q_CLASSINFO("APIEnabledDisplayName", "Command interface")
    Q_CLASSINFO("APIEnabledDescription", "Accept commands from other programs over HTTP and WebSocket")

    Q_PROPERTY(int APIPort READ getAPIPort WRITE setAPIPort NOTIFY APIPortChanged)
    Q_CLASSINFO("APIPortCategory", "7.API")
    Q_CLASSINFO("APIPortDefault", "2336")
    Q_CLASSINFO("APIPortMinimum", "1")
    Q_CLASSINFO("APIPortMaximum", "65535")
    Q_CLASSINFO("APIPortStep", "1")
    Q_CLASSINFO("APIPortEditable", "true")
    Q_CLASSINFO("APIPortVisibleBound", "APIEnabled:true")
    Q_CLASSINFO("APIPortDisplayName", "HTTP port")
    Q_CLASSINFO("APIPortDescription", "Port of the HTTP command interface")

    Q_PROPERTY(QString APIKey READ getAPIKey WRITE setAPIKey NOTIFY APIKeyChanged)
    Q_CLASSINFO("APIKeyCategory", "7.API")
    Q_CLASSINFO("APIKeyDefault", "\"\"")
    Q_CLASSINFO("APIKeyEditable", "true")
    Q_CLASSINFO("APIKeyVisibleBound", "APIEnabled:true")
    Q_CLASSINFO("APIKeyDisplayName", "API key")
    Q_CLASSINFO("APIKeyDescription", "When set, every command must carry it (argument key or apikey, or header X-Api-Key); empty leaves the interface open")

    Q_PROPERTY(int EngineNodes READ getEngineNodes WRITE setEngineNodes NOTIFY EngineNodesChanged)
    Q_CLASSINFO("EngineNodesCategory", "7.API")
    Q_CLASSINFO("EngineNodesDefault", "1")
    Q_CLASSINFO("EngineNodesMinimum", "1")
    Q_CLASSINFO("EngineNodesMaximum", "8")
    Q_CLASSINFO("EngineNodesStep", "1")
    Q_CLASSINFO("EngineNodesEditable", "true")
    Q_CLASSINFO("EngineNodesDisplayName", "Engine nodes")
    Q_CLASSINFO("EngineNodesDescription", "Number of independent engines (one device each) offered to other programs; read at start")

    // Kept as JSON text and edited on their own screens, so not listed with the other settings.
    Q_PROPERTY(QString CustomAlgorithms READ getCustomAlgorithms WRITE setCustomAlgorithms NOTIFY CustomAlgorithmsChanged)
    Q_CLASSINFO("CustomAlgorithmsCategory", "1.Common")
    Q_CLASSINFO("CustomAlgorithmsDefault", "\"[]\"")
    Q_CLASSINFO("CustomAlgorithmsEditable", "true")
    Q_CLASSINFO("CustomAlgorithmsNotVisible", "")
    Q_CLASSINFO("CustomAlgorithmsDisplayName", "Custom algorithms")
    Q_CLASSINFO("CustomAlgorithmsDescription", "The user's algorithms as a JSON array, one object per algorithm")

    Q_PROPERTY(QString DeviceMontages READ getDeviceMontages WRITE setDeviceMontages NOTIFY DeviceMontagesChanged)
    Q_CLASSINFO("DeviceMontagesCategory", "1.Common")
    Q_CLASSINFO("DeviceMontagesDefault", "\"{}\"")
    Q_CLASSINFO("DeviceMontagesEditable", "true")
    Q_CLASSINFO("DeviceMontagesNotVisible", "")
    Q_CLASSINFO("DeviceMontagesDisplayName", "Montage per device")
    Q_CLASSINFO("DeviceMontagesDescription", "JSON object from device name to the montage file applied when it starts")

public:
    explicit OrvexSettings(QObject* parent = nullptr);
    ~OrvexSettings() override;

    // The folder new recordings go to: DataFolder, or <Documents>/OrvexPro/Records when empty.
    QString resolvedDataFolder() const;
    static QString defaultDataFolder();

    int getStorageTime() const { return m_storageTime; }
    QString getFavouriteDevice() const { return m_favouriteDevice; }
    bool getStartFavouriteDevice() const { return m_startFavouriteDevice; }
    bool getResumeRecordingAfterReconnect() const { return m_resumeRecordingAfterReconnect; }
    bool getLoggingEnabled() const { return m_loggingEnabled; }
    float getHPF() const { return m_hpf; }
    float getLPF() const { return m_lpf; }
    float getBSF() const { return m_bsf; }
    float getBSF2() const { return m_bsf2; }
    int getHPFOrder() const { return m_hpfOrder; }
    int getLPFOrder() const { return m_lpfOrder; }
    bool getUseFIR() const { return m_useFIR; }
    QString getDataFolder() const { return m_dataFolder; }
    bool getRecordRawEDF() const { return m_recordRawEDF; }
    bool getRecordOXD() const { return m_recordOXD; }
    QString getMeditationChannels() const { return m_meditationChannels; }
    float getMeditationMinFrequency() const { return m_meditationMinFrequency; }
    float getMeditationMaxFrequency() const { return m_meditationMaxFrequency; }
    float getMeditationLowThreshold1() const { return m_meditationLowThreshold1; }
    float getMeditationLowThreshold2() const { return m_meditationLowThreshold2; }
    float getMeditationLowThreshold3() const { return m_meditationLowThreshold3; }
    float getMeditationTopThreshold1() const { return m_meditationTopThreshold1; }
    float getMeditationTopThreshold2() const { return m_meditationTopThreshold2; }
    float getMeditationTopThreshold3() const { return m_meditationTopThreshold3; }
    int getMeditationLowThreshold4() const { return m_meditationLowThreshold4; }
    int getMeditationTopThreshold4() const { return m_meditationTopThreshold4; }
    int getMeditationLowThresholdHistory() const { return m_meditationLowThresholdHistory; }
    int getMeditationTopThresholdHistory() const { return m_meditationTopThresholdHistory; }
    int getMeditationSmoothing() const { return m_meditationSmoothing; }
    bool getMeditationLimitTo100() const { return m_meditationLimitTo100; }
    QString getConcentrationChannels() const { return m_concentrationChannels; }
    float getConcentrationMinFrequency() const { return m_concentrationMinFrequency; }
    float getConcentrationMaxFrequency() const { return m_concentrationMaxFrequency; }
    float getConcentrationLowThreshold1() const { return m_concentrationLowThreshold1; }
    float getConcentrationLowThreshold2() const { return m_concentrationLowThreshold2; }
    float getConcentrationLowThreshold3() const { return m_concentrationLowThreshold3; }
    float getConcentrationTopThreshold1() const { return m_concentrationTopThreshold1; }
    float getConcentrationTopThreshold2() const { return m_concentrationTopThreshold2; }
    float getConcentrationTopThreshold3() const { return m_concentrationTopThreshold3; }
    int getConcentrationLowThreshold4() const { return m_concentrationLowThreshold4; }
    int getConcentrationTopThreshold4() const { return m_concentrationTopThreshold4; }
    int getConcentrationLowThresholdHistory() const { return m_concentrationLowThresholdHistory; }
    int getConcentrationTopThresholdHistory() const { return m_concentrationTopThresholdHistory; }
    int getConcentrationSmoothing() const { return m_concentrationSmoothing; }
    bool getConcentrationLimitTo100() const { return m_concentrationLimitTo100; }
    float getSpectrumWindowSeconds() const { return m_spectrumWindowSeconds; }
    float getSpectrumStepSeconds() const { return m_spectrumStepSeconds; }
    float getSpectrumHanningPercent() const { return m_spectrumHanningPercent; }
    bool getAPIEnabled() const { return m_apiEnabled; }
    int getAPIPort() const { return m_apiPort; }
    QString getAPIKey() const { return m_apiKey; }
    int getEngineNodes() const { return m_engineNodes; }
    QString getCustomAlgorithms() const { return m_customAlgorithms; }
    QString getDeviceMontages() const { return m_deviceMontages; }

    void setStorageTime(int value);
    void setFavouriteDevice(QString value);
    void setStartFavouriteDevice(bool value);
    void setResumeRecordingAfterReconnect(bool value);
    void setLoggingEnabled(bool value);
    void setHPF(float value);
    void setLPF(float value);
    void setBSF(float value);
    void setBSF2(float value);
    void setHPFOrder(int value);
    void setLPFOrder(int value);
    void setUseFIR(bool value);
    void setDataFolder(QString value);
    void setRecordRawEDF(bool value);
    void setRecordOXD(bool value);
    void setMeditationChannels(QString value);
    void setMeditationMinFrequency(float value);
    void setMeditationMaxFrequency(float value);
    void setMeditationLowThreshold1(float value);
    void setMeditationLowThreshold2(float value);
    void setMeditationLowThreshold3(float value);
    void setMeditationTopThreshold1(float value);
    void setMeditationTopThreshold2(float value);
    void setMeditationTopThreshold3(float value);
    void setMeditationLowThreshold4(int value);
    void setMeditationTopThreshold4(int value);
    void setMeditationLowThresholdHistory(int value);
    void setMeditationTopThresholdHistory(int value);
    void setMeditationSmoothing(int value);
    void setMeditationLimitTo100(bool value);
    void setConcentrationChannels(QString value);
    void setConcentrationMinFrequency(float value);
    void setConcentrationMaxFrequency(float value);
    void setConcentrationLowThreshold1(float value);
    void setConcentrationLowThreshold2(float value);
    void setConcentrationLowThreshold3(float value);
    void setConcentrationTopThreshold1(float value);
    void setConcentrationTopThreshold2(float value);
    void setConcentrationTopThreshold3(float value);
    void setConcentrationLowThreshold4(int value);
    void setConcentrationTopThreshold4(int value);
    void setConcentrationLowThresholdHistory(int value);
    void setConcentrationTopThresholdHistory(int value);
    void setConcentrationSmoothing(int value);
    void setConcentrationLimitTo100(bool value);
    void setSpectrumWindowSeconds(float value);
    void setSpectrumStepSeconds(float value);
    void setSpectrumHanningPercent(float value);
    void setAPIEnabled(bool value);
    void setAPIPort(int value);
    void setAPIKey(QString value);
    void setEngineNodes(int value);
    void setCustomAlgorithms(QString value);
    void setDeviceMontages(QString value);

Q_SIGNALS:
    void StorageTimeChanged();
    void FavouriteDeviceChanged();
    void StartFavouriteDeviceChanged();
    void ResumeRecordingAfterReconnectChanged();
    void LoggingEnabledChanged();
    void HPFChanged();
    void LPFChanged();
    void BSFChanged();
    void BSF2Changed();
    void HPFOrderChanged();
    void LPFOrderChanged();
    void UseFIRChanged();
    void DataFolderChanged();
    void RecordRawEDFChanged();
    void RecordOXDChanged();
    void MeditationChannelsChanged();
    void MeditationMinFrequencyChanged();
    void MeditationMaxFrequencyChanged();
    void MeditationLowThreshold1Changed();
    void MeditationLowThreshold2Changed();
    void MeditationLowThreshold3Changed();
    void MeditationTopThreshold1Changed();
    void MeditationTopThreshold2Changed();
    void MeditationTopThreshold3Changed();
    void MeditationLowThreshold4Changed();
    void MeditationTopThreshold4Changed();
    void MeditationLowThresholdHistoryChanged();
    void MeditationTopThresholdHistoryChanged();
    void MeditationSmoothingChanged();
    void MeditationLimitTo100Changed();
    void ConcentrationChannelsChanged();
    void ConcentrationMinFrequencyChanged();
    void ConcentrationMaxFrequencyChanged();
    void ConcentrationLowThreshold1Changed();
    void ConcentrationLowThreshold2Changed();
    void ConcentrationLowThreshold3Changed();
    void ConcentrationTopThreshold1Changed();
    void ConcentrationTopThreshold2Changed();
    void ConcentrationTopThreshold3Changed();
    void ConcentrationLowThreshold4Changed();
    void ConcentrationTopThreshold4Changed();
    void ConcentrationLowThresholdHistoryChanged();
    void ConcentrationTopThresholdHistoryChanged();
    void ConcentrationSmoothingChanged();
    void ConcentrationLimitTo100Changed();
    void SpectrumWindowSecondsChanged();
    void SpectrumStepSecondsChanged();
    void SpectrumHanningPercentChanged();
    void APIEnabledChanged();
    void APIPortChanged();
    void APIKeyChanged();
    void EngineNodesChanged();
    void CustomAlgorithmsChanged();
    void DeviceMontagesChanged();

private:
    // Start values only until initialize() applies the declared defaults.
    int m_storageTime = 0;
    QString m_favouriteDevice;
    bool m_startFavouriteDevice = true;
    bool m_resumeRecordingAfterReconnect = true;
    bool m_loggingEnabled = false;
    float m_hpf = 0.0f;
    float m_lpf = 0.0f;
    float m_bsf = 0.0f;
    float m_bsf2 = 0.0f;
    int m_hpfOrder = 0;
    int m_lpfOrder = 0;
    bool m_useFIR = false;
    QString m_dataFolder;
    bool m_recordRawEDF = false;
    bool m_recordOXD = false;
    QString m_meditationChannels;
    float m_meditationMinFrequency = 0.0f;
    float m_meditationMaxFrequency = 0.0f;
    float m_meditationLowThreshold1 = 0.0f;
    float m_meditationLowThreshold2 = 0.0f;
    float m_meditationLowThreshold3 = 0.0f;
    float m_meditationTopThreshold1 = 0.0f;
    float m_meditationTopThreshold2 = 0.0f;
    float m_meditationTopThreshold3 = 0.0f;
    int m_meditationLowThreshold4 = 1000;
    int m_meditationTopThreshold4 = 1000;
    int m_meditationLowThresholdHistory = 0;
    int m_meditationTopThresholdHistory = 0;
    int m_meditationSmoothing = 0;
    bool m_meditationLimitTo100 = false;
    QString m_concentrationChannels;
    float m_concentrationMinFrequency = 0.0f;
    float m_concentrationMaxFrequency = 0.0f;
    float m_concentrationLowThreshold1 = 0.0f;
    float m_concentrationLowThreshold2 = 0.0f;
    float m_concentrationLowThreshold3 = 0.0f;
    float m_concentrationTopThreshold1 = 0.0f;
    float m_concentrationTopThreshold2 = 0.0f;
    float m_concentrationTopThreshold3 = 0.0f;
    int m_concentrationLowThreshold4 = 1000;
    int m_concentrationTopThreshold4 = 1000;
    int m_concentrationLowThresholdHistory = 0;
    int m_concentrationTopThresholdHistory = 0;
    int m_concentrationSmoothing = 0;
    bool m_concentrationLimitTo100 = false;
    float m_spectrumWindowSeconds = 0.0f;
    float m_spectrumStepSeconds = 0.0f;
    float m_spectrumHanningPercent = 0.0f;
    bool m_apiEnabled = false;
    int m_apiPort = 0;
    QString m_apiKey;
    int m_engineNodes = 1;
    QString m_customAlgorithms;
    QString m_deviceMontages;
};
