#pragma once

#include "core/AbstractDevice.h"
#include "core/ChannelPipeline.h"
#include "core/CortexDataResult.h"
#include "core/DeviceInfo.h"
#include "core/EngineHistories.h"
#include "core/EngineMetering.h"
#include "core/RecordingSession.h"
#include "core/TimestampedData.h"
#include "dsp/MontageChannel.h"

#include <QBluetoothDeviceInfo>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QRecursiveMutex>
#include <QStringList>

#include <functional>
#include <memory>

class AbstractDeviceDiscovery;
class CustomBCIAlgorithm;
class GeneratorVirtualDevice;
class RecordingSpaceWatch;
class VirtualDevicesSettings;

// The acquisition engine: finds devices, starts one, runs every block it delivers through
// montage, filters and histories, and reports the results by signals, getters and grabs.
class CortexCore : public QObject
{
    Q_OBJECT
public:
    enum MetaIndexes { Meditation, Concentration };
    Q_ENUM(MetaIndexes)
    enum Filters { HPF, LPF, BSF };
    Q_ENUM(Filters)

    // Creates the device object for a headset found by the Bluetooth search.
    using HeadsetFactory = std::function<AbstractDevice*(const QBluetoothDeviceInfo&, QObject* parent)>;

    // Filter family used when filters are built: the recursive-section family when true.
    static bool Use_FIR;

    explicit CortexCore(QObject* parent = nullptr);
    ~CortexCore() override;

    // Discovery and lifecycle
    bool startDeviceSearch();
    void stopDeviceSearch();
    bool isSearchingDevices() const;
    QList<DeviceInfo> getFoundDevices() const;
    QList<AbstractDevice*> getDeviceList() const;
    int getDeviceCount() const;
    bool startDevice(DeviceInfo info, QList<MontageChannel> montage = {}, int channelCount = -1);
    bool startDeviceBySerialNumber(QString serial, QList<MontageChannel> montage);
    bool createDevice(int channelCount, float frequency);
    bool createDevice(QList<QString> channelNames, float frequency);
    void stopDevice();
    bool isDeviceStarted() const;
    AbstractDevice* currentDevice() const;
    DeviceInfo currentDeviceInfo() const;
    DeviceInfo getCurrentDevice() const;
    float getCurrentDeviceFrequency() const;
    void setVirtualDeviceSettings(VirtualDevicesSettings* settings);

    // Seams for the Bluetooth side: the search itself and the headset objects it creates.
    void setDeviceDiscovery(AbstractDeviceDiscovery* discovery);
    void setHeadsetFactory(HeadsetFactory factory);

    // Data path
    CortexDataResult addDataChannelWise(QList<QList<float>> block);
    CortexDataResult addData(QList<float> sampleWise);
    static void appendAndCropDataVector(QList<float>& target, QList<float>& source, int maxSize);
    void recreateDataAndFilters(bool recreateFilters);

    void setHPF(float value, bool apply);
    void setLPF(float value, bool apply);
    void setBSF(float value, bool apply);
    void setBSF2(float value, bool apply);
    void setHPFOrder(int order, bool apply);
    void setLPFOrder(int order, bool apply);
    float getHPF() const;
    float getLPF() const;
    float getBSF() const;
    float getBSF2() const;
    int getHPFOrder() const;
    int getLPFOrder() const;
    void setFilters(float hpf, float lpf, float bsf, float bsf2);
    void getFilters(float& hpf, float& lpf, float& bsf, float& bsf2) const;
    void setFilter(Filters type, int channel, float value, bool apply);
    float getFilter(Filters type, int channel) const;

    void setStorageTimeSeconds(int seconds);
    int getStorageTimeSeconds() const;
    void enableDataGrabMode(bool enable);
    bool isDataGrabModeEnabled() const;

    QList<QList<float>> getRawDeviceData() const;
    QList<QList<float>> getRawData() const;
    QList<QList<float>> getFilteredData() const;
    QList<QList<float>> grabOriginalData();
    QList<QList<float>> grabFilteredData();
    QList<int> getSignalQuality() const;

    void setChannelScale(int channel, double scale, bool apply);
    void setChannelOffset(int channel, double offset, bool apply);
    void setChannelVisualScale(int channel, double scale, bool apply);
    double getChannelScale(int channel) const;
    double getChannelOffset(int channel) const;
    double getChannelVisualScale(int channel) const;

    QList<MontageChannel> getCurrentMontage() const;
    QList<QString> getCurrentMontageChannelNames() const;
    MontageChannel montageChannel(int index) const;
    int getMontageChannelIndex(QString name) const;
    void setMontageChannelNames(QList<QString> names);
    // Replaces the running device's montage and rebuilds filters and histories. Refused (false,
    // with a console line) while recording, without a device, or when the montage reads inputs
    // the device lacks.
    bool setMontage(QList<MontageChannel> montage);
    QList<int> channelIndexesFromNameString(QString names) const;

    // Metering: spectra, rhythms, meditation and concentration, custom algorithms
    bool startSpectrumCalculation(float windowSeconds, float stepSeconds, float hanningPercent);
    float getSpectrumWindowSeconds() const;
    float getSpectrumWindowStepSeconds() const;
    float getSpectrumHanningPercent() const;
    float getSpectrumFrequencyStep() const;
    QList<float> getCurrentSpectrumFrequencies() const;
    QList<QList<float>> getLastSpectrum() const;
    QList<TimestampedData> getSpectrumData() const;
    QList<TimestampedData> grabSpectrumData();
    QList<StandartRhythmSample> getLastStandartRhythms() const;
    QList<QList<StandartRhythmSample>> grabLastStandartRhythms();

    bool startMetaIndexMetering(int index, QList<int> channels, float p3, float p4, float p5, float p6, float p7,
                                float p8, int p9, int p10, int p11, int p12, bool p13);
    bool startMetaIndexMetering(int index, QString channels, float p3, float p4, float p5, float p6, float p7,
                                float p8, int p9, int p10, int p11, int p12, bool p13);
    void stopMetaIndexMetering(int index);
    float getCurrentMetaIndexLevel(int index) const;
    RhythmNormSample getLastMetaIndexResult(int index) const;
    QList<RhythmNormSample> grabMetaIndexData(int index);
    void setMeditationRange(float minimum, float maximum);
    void setConcentrationRange(float minimum, float maximum);
    double getMeditationMinimum() const;
    double getMeditationMaximum() const;
    double getConcentrationMinimum() const;
    double getConcentrationMaximum() const;

    void addCustomBCIAlgorithm(CustomBCIAlgorithm* algorithm);
    bool removeCustomBCIAlgorithm(QString name);
    void clearCustomBCIAlgorithms();
    QList<CustomBCIAlgorithm*> getCustomAlgoritms() const;

    // Recording
    void setDataFolder(QString folder);
    QString getDataFolder() const { return m_dataFolder; }
    void enableRecordRawEDF(bool enable) { m_recordRaw = enable; }
    void enableRecordOXD(bool enable) { m_recordOxd = enable; }
    // Who the next recordings are of; goes into their file headers.
    void setPatientInfo(const PatientInfo& patient) { m_patient = patient; }
    PatientInfo patientInfo() const { return m_patient; }
    // False when no device streams or a file cannot be written (see lastRecordError()).
    bool startRecord(QString path = QString(), bool flag = false);
    QList<QString> stopRecord();
    bool pauseRecord();
    bool continueRecord(QString text = QString());
    int addAnnotation(QString text, int onsetMs = -1, int durationMs = 0);
    bool addFileToRecord(QString name, QByteArray data);
    bool addLogItem(QVariant value, QString key, QDateTime time = QDateTime::currentDateTime());
    bool isRecording() const { return m_recording; }
    bool isRecordPaused() const { return m_recordPaused; }
    float currentRecordDuration() const;
    QString lastRecordFileName() const { return m_lastRecordFileName; }
    QString lastRecordError() const { return m_lastRecordError; }

Q_SIGNALS:
    void deviceFound(DeviceInfo info);
    void deviceLost(DeviceInfo info);
    void deviceSearchStarted();
    void deviceSearchFinished();
    void deviceStarting();
    void deviceStarted();
    void deviceStartedInfo(DeviceInfo info);
    void deviceStopped();
    void deviceBatteryLevelUpdated(int value);
    void montageChanged();

    void newData(QList<float> sampleWiseData, int channels);
    void newChannelWiseData(QList<float> channelWiseData, int channels);
    void newDataByChannel(QList<QList<float>> data);
    void newSignalQuality(QList<int> quality);
    void newCortexDataResult(CortexDataResult result);
    void newImpedances(QList<double> impedances);
    void dataRecreated();
    void channelVisualScaleChanged(int channel, double scale);
    void recordDurationChanged(float seconds);
    void recordStarted(QString path);
    void recordPaused();
    void recordContinued();
    void recordStopped(QList<QString> paths, float durationSeconds);
    void isRecordingChanged(bool isRecording);
    // A file could not be written and the recording was stopped; lastRecordError() says why.
    void recordFailed(QString error);
    // The recording is about to close: last chance to annotate it.
    void recordStopping();
    // Less than ten minutes of the running recording fit on its disk.
    void recordSpaceLow(QString message);
    void newAnnotation(QString text, int onsetMs);
    void stateRecordStarted(int index);
    void stateRecordStopped(int index);
    void stateRecognized(int index);

protected:
    void reconnectToDevice(QString name);
    void stopRecordAfterFailure();
    RecordingSpaceWatch* spaceWatch();

private Q_SLOTS:
    void onDeviceData(QList<QList<float>> block);
    void onSearchFinished();
    void onSearchCanceled();
    void onDeviceDiscovered(const QBluetoothDeviceInfo& info);

private:
    void stopCurrentDevice();
    void dropDeviceConnections();
    void connectDevice(AbstractDevice* device, const DeviceInfo& info);
    AbstractDevice* deviceFor(const DeviceInfo& info) const;
    void clearDeviceMap();
    void listGenerator();
    void listFilePlayer();
    void emitOptionalDataSignals(const QList<QList<float>>& filtered);
    FilterChain::Settings engineFilterSettings() const;
    template<typename T>
    void storeFilterSetting(T& target, T value, bool apply);
    int historyLength() const;

    static void registerTypes();

    mutable QRecursiveMutex m_dataMutex;

    AbstractDeviceDiscovery* m_discovery = nullptr;
    bool m_discoveryConnected = false;
    HeadsetFactory m_headsetFactory;
    QList<DeviceInfo> m_foundDevices;
    QMap<QString, AbstractDevice*> m_devices;
    GeneratorVirtualDevice* m_generator = nullptr;
    VirtualDevicesSettings* m_virtualSettings = nullptr;

    AbstractDevice* m_currentDevice = nullptr;
    DeviceInfo m_currentInfo;
    QString m_startingName;
    int m_channelCount = 0;
    QString m_reconnectTarget;
    bool m_searching = false;
    bool m_deviceStarted = false;
    int m_batteryLevel = -1;
    QList<QMetaObject::Connection> m_deviceConnections;

    // Data path state
    QList<MontageChannel> m_montage;
    ChannelPipeline m_pipeline;
    EngineHistories m_histories;
    EngineMetering m_metering;
    float m_samplingRate = 0;
    float m_storageTime = 10;
    float m_lpf = 40;
    float m_hpf = 2;
    float m_bsf = 50;
    float m_bsf2 = 0;
    int m_lpfOrder = 4;
    int m_hpfOrder = 4;
    bool m_grabMode = false;
    int m_reportedMismatch = -1; // channel count of the last block said not to fit the montage

    // Recording state
    struct PendingLogItem
    {
        QDateTime time;
        QString key;
        QVariant value;
    };
    void writePendingAnnotations();
    QString m_dataFolder;
    QString m_lastRecordFileName;
    QString m_lastRecordError;
    bool m_recording = false;
    bool m_recordPaused = false;
    bool m_recordFailing = false; // a stop after a failed write is on its way
    RecordingSpaceWatch* m_spaceWatch = nullptr;
    bool m_recordRaw = false;
    bool m_recordOxd = true;
    PatientInfo m_patient;
    qint64 m_pauseStartedMs = 0;
    std::unique_ptr<RecordingSession> m_record;
    QList<PendingLogItem> m_pendingLog;
};
