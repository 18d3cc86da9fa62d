#include "core/CortexCore.h"
#include "core/RecordingSpaceWatch.h"

#include "core/AbstractDeviceDiscovery.h"
#include "core/DefaultMontage.h"
#include "core/HeadsetDescriptor.h"
#include "devices/BleDeviceDiscovery.h"
#include "devices/EDFVirtualDevice.h"
#include "devices/GeneratorVirtualDevice.h"
#include "devices/OrvexDevice.h"
#include "services/GlobalConsole.h"
#include "services/GlobalConsoleWriter.h"
#include "services/TextHelper.h"
#include "settings/VirtualDevicesSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QMetaMethod>
#include <QTimer>

bool CortexCore::Use_FIR = true;

namespace {
const QString GeneratorKey = QStringLiteral("GeneratorDevice");
const QString FilePlayerKey = QStringLiteral("EDFVirtualDevice");
const QString VirtualModel = QStringLiteral("Virtual");
// Without an adapter a pending reconnection has no search to wait for; it tries again after this.
constexpr int ReconnectRetryMs = 1000;
}

CortexCore::CortexCore(QObject* parent)
    : QObject(parent)
{
    registerTypes();
    HeadsetDescriptor::allowedDevices();
    setDeviceDiscovery(new BleDeviceDiscovery(this));
    setHeadsetFactory([](const QBluetoothDeviceInfo& info, QObject* owner) -> AbstractDevice* {
        return new OrvexDevice(info, owner);
    });
}

CortexCore::~CortexCore()
{
    if (m_recording)
        stopRecord();
    dropDeviceConnections();
    if (m_currentDevice) {
        m_currentDevice->stop();
        m_currentDevice->close();
    }
}

void CortexCore::registerTypes()
{
    qRegisterMetaType<DeviceInfo>("DeviceInfo");
    qRegisterMetaType<CortexDataResult>("CortexDataResult");
}

void CortexCore::setDeviceDiscovery(AbstractDeviceDiscovery* discovery)
{
    if (m_discovery && m_discovery->parent() == this)
        m_discovery->deleteLater();
    m_discovery = discovery;
    m_discoveryConnected = false;
}

void CortexCore::setHeadsetFactory(HeadsetFactory factory)
{
    m_headsetFactory = std::move(factory);
}

void CortexCore::setVirtualDeviceSettings(VirtualDevicesSettings* settings)
{
    m_virtualSettings = settings;
    if (m_generator)
        m_generator->setSettings(settings);
}

// ---------------------------------------------------------------------------------------
// Search

bool CortexCore::startDeviceSearch()
{
    GlobalConsole::writeLine(QStringLiteral("START DEVICE SEARCH ")
                             + QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd hh:mm:ss")));
    stopDevice();
    m_searching = true;
    Q_EMIT deviceSearchStarted();

    clearDeviceMap();
    m_foundDevices.clear();
    listGenerator();
    listFilePlayer();

    if (m_discovery) {
        QMetaObject::invokeMethod(m_discovery, "stop", Qt::QueuedConnection);
        if (!m_discoveryConnected) {
            connect(m_discovery, &AbstractDeviceDiscovery::finished, this, &CortexCore::onSearchFinished,
                    Qt::QueuedConnection);
            connect(m_discovery, &AbstractDeviceDiscovery::canceled, this, &CortexCore::onSearchCanceled,
                    Qt::QueuedConnection);
            connect(m_discovery, &AbstractDeviceDiscovery::deviceDiscovered, this,
                    &CortexCore::onDeviceDiscovered, Qt::QueuedConnection);
            m_discoveryConnected = true;
        }
        if (m_discovery->prepareAdapter()) {
            QMetaObject::invokeMethod(m_discovery, "start", Qt::QueuedConnection);
            return true;
        }
    }
    kxDebug() << QStringLiteral("NO BLE!");
    m_searching = false;
    Q_EMIT deviceSearchFinished();
    if (!m_reconnectTarget.isEmpty()) {
        QTimer::singleShot(ReconnectRetryMs, this, [this] {
            if (!m_reconnectTarget.isEmpty() && !m_searching)
                startDeviceSearch();
        });
    }
    return true;
}

void CortexCore::stopDeviceSearch()
{
    m_searching = false;
    if (m_discovery)
        QMetaObject::invokeMethod(m_discovery, "stop", Qt::QueuedConnection);
    Q_EMIT deviceSearchFinished();
}

bool CortexCore::isSearchingDevices() const { return m_searching; }
QList<DeviceInfo> CortexCore::getFoundDevices() const { return m_foundDevices; }
QList<AbstractDevice*> CortexCore::getDeviceList() const { return m_devices.values(); }
int CortexCore::getDeviceCount() const { return int(m_foundDevices.size()); }

void CortexCore::clearDeviceMap()
{
    for (AbstractDevice* device : std::as_const(m_devices)) {
        if (device != m_generator)
            device->deleteLater();
    }
    m_devices.clear();
}

void CortexCore::listGenerator()
{
    if (!m_virtualSettings || !m_virtualSettings->getGeneratorEnabled())
        return;
    const QList<QString> names = TextHelper::splitAndTrim(m_virtualSettings->getGeneratorChannelNames());
    if (names.isEmpty())
        return;
    if (!m_generator)
        m_generator = new GeneratorVirtualDevice(this);
    m_devices.insert(GeneratorKey, m_generator);
    m_generator->setSettings(m_virtualSettings);

    DeviceInfo info;
    info.name = GeneratorKey;
    info.serialNumber = GeneratorKey;
    info.model = VirtualModel;
    info.maxChannels = 10;
    info.preferredChannelCount = int(names.size());
    info.currentChannelCount = int(names.size());
    info.battery = -1;
    info.channelModes.insert(int(names.size()), float(m_virtualSettings->getGeneratorSamplingRate()));
    m_foundDevices.append(info);
    Q_EMIT deviceFound(info);
}

void CortexCore::listFilePlayer()
{
    if (!m_virtualSettings)
        return;
    const QString path = m_virtualSettings->getEDFPath();
    if (path.isEmpty() || !QFileInfo::exists(path))
        return;
    auto* player = new EDFVirtualDevice(this);
    player->setPath(path);
    if (player->channelCount() < 1) {
        player->deleteLater();
        return;
    }
    m_devices.insert(FilePlayerKey, player);

    DeviceInfo info;
    info.name = FilePlayerKey;
    info.serialNumber = FilePlayerKey;
    info.model = VirtualModel;
    info.maxChannels = player->channelCount();
    info.preferredChannelCount = player->channelCount();
    info.currentChannelCount = player->channelCount();
    info.battery = -1;
    info.channelModes.insert(player->channelCount(), player->samplingRate());
    info.channelNames = player->channelNames();
    m_foundDevices.append(info);
    Q_EMIT deviceFound(info);
}

void CortexCore::onSearchFinished()
{
    m_searching = false;
    Q_EMIT deviceSearchFinished();
    // Keep searching until the lost device shows up again; once it has been seen its restart
    // is already queued.
    if (m_reconnectTarget.isEmpty())
        return;
    for (const DeviceInfo& info : std::as_const(m_foundDevices)) {
        if (info.name == m_reconnectTarget)
            return;
    }
    startDeviceSearch();
}

void CortexCore::onSearchCanceled()
{
    m_searching = false;
    Q_EMIT deviceSearchFinished();
}

void CortexCore::onDeviceDiscovered(const QBluetoothDeviceInfo& bluetoothInfo)
{
    const QString name = bluetoothInfo.name();
    if (!HeadsetDescriptor::isAllowedName(name) || m_devices.contains(name))
        return;
    AbstractDevice* device = m_headsetFactory ? m_headsetFactory(bluetoothInfo, this) : nullptr;
    if (!device) {
        kxDebug() << QStringLiteral("No driver for the headset ") + name;
        return;
    }
    m_devices.insert(device->name(), device);

    const DeviceInfo info = HeadsetDescriptor::describe(device->name(), device->channelCount());
    m_foundDevices.append(info);
    Q_EMIT deviceFound(info);

    if (!m_reconnectTarget.isEmpty() && m_reconnectTarget == info.name) {
        GlobalConsole::writeLine(QStringLiteral("RESTART DEVICE ") + info.name);
        QMetaObject::invokeMethod(this, [this, info] { startDevice(info, {}, -1); }, Qt::QueuedConnection);
    }
}

void CortexCore::reconnectToDevice(QString name)
{
    QMetaObject::invokeMethod(
        this,
        [this, name] {
            m_reconnectTarget = name;
            startDeviceSearch();
        },
        Qt::QueuedConnection);
}

// ---------------------------------------------------------------------------------------
// Lifecycle

AbstractDevice* CortexCore::deviceFor(const DeviceInfo& info) const
{
    if (info.model == VirtualModel) {
        if (info.name.contains(QStringLiteral("EDF")))
            return m_devices.value(FilePlayerKey);
        if (info.name.contains(QStringLiteral("Generator")))
            return m_devices.value(GeneratorKey);
        return nullptr;
    }
    return m_devices.value(info.name);
}

bool CortexCore::startDevice(DeviceInfo info, QList<MontageChannel> montage, int channelCount)
{
    m_reconnectTarget.clear();
    if (!m_startingName.isEmpty() && info.name == m_startingName) {
        kxDebug() << QStringLiteral("ALREADY CONNECTING TO THIS DEVICE ") + info.name;
        return false;
    }
    stopCurrentDevice();

    kxDebug() << QStringLiteral("START DEVICE %1 %2").arg(info.name).arg(channelCount);
    m_startingName = info.name;
    Q_EMIT deviceStarting();

    int chosen = channelCount < 0 ? info.preferredChannelCount : channelCount;
    AbstractDevice* device = deviceFor(info);
    const bool isVirtual = info.model == VirtualModel;
    if (!device || (!isVirtual && info.channelModes.isEmpty())) {
        kxDebug() << QStringLiteral("Device not available: ") + info.name;
        m_startingName.clear();
        return false;
    }

    float rate = 0;
    QList<QString> channelNames = device->channelNames();
    if (isVirtual) {
        rate = device->samplingRate();
        chosen = int(channelNames.size());
    } else {
        rate = info.channelModes.value(chosen, info.channelModes.first());
        if (channelNames.size() > chosen)
            channelNames = channelNames.mid(0, chosen);
    }
    if (montage.isEmpty()) {
        kxDebug() << QStringLiteral("Create auto montage");
        montage = DefaultMontage::forDevice(info, channelNames);
        QStringList listed;
        for (const MontageChannel& channel : std::as_const(montage))
            listed.append(channel.name);
        kxDebug() << listed.join(QStringLiteral(","));
    }

    m_currentDevice = device;
    m_currentInfo = info;
    m_currentInfo.currentChannelCount = chosen;
    m_channelCount = chosen;
    m_samplingRate = rate;
    m_montage = montage;
    recreateDataAndFilters(true);
    connectDevice(device, info);

    const bool opened = device->open();
    if (opened && !isVirtual) {
        device->start(int(rate));
        kxDebug() << QStringLiteral("START DEVICE %1 Hz").arg(int(rate));
    }
    if (!opened) {
        kxDebug() << QStringLiteral("Device could not be opened: ") + info.name;
        stopDevice();
        return false;
    }

    m_batteryLevel = device->batteryLevel();
    stopDeviceSearch();
    Q_EMIT deviceStarted();
    Q_EMIT deviceStartedInfo(m_currentInfo);
    Q_EMIT deviceBatteryLevelUpdated(m_batteryLevel);
    m_deviceStarted = true;
    return true;
}

bool CortexCore::startDeviceBySerialNumber(QString, QList<MontageChannel>)
{
    kxDebug() << QStringLiteral("not impl");
    return false;
}

bool CortexCore::createDevice(int channelCount, float frequency)
{
    if (channelCount == 0 || frequency < 0)
        return false;
    return createDevice(DefaultMontage::standardChannelNames(channelCount), frequency);
}

bool CortexCore::createDevice(QList<QString> channelNames, float frequency)
{
    if (channelNames.isEmpty() || frequency < 0)
        return false;
    stopDevice(); // the generator may be running with another layout
    if (!m_generator)
        m_generator = new GeneratorVirtualDevice(this);
    m_generator->setSettings(m_virtualSettings);
    m_generator->setFrequency(frequency);
    m_generator->setChannelNames(channelNames);
    m_devices.insert(GeneratorKey, m_generator);

    DeviceInfo info;
    info.name = GeneratorKey;
    info.serialNumber = GeneratorKey;
    info.model = VirtualModel;
    info.maxChannels = int(channelNames.size());
    info.preferredChannelCount = int(channelNames.size());
    info.currentChannelCount = int(channelNames.size());
    info.channelModes.insert(int(channelNames.size()), frequency);
    startDevice(info, DefaultMontage::forChannelNames(channelNames), -1);
    return true;
}

void CortexCore::connectDevice(AbstractDevice* device, const DeviceInfo& info)
{
    const QString name = info.name;
    m_deviceConnections
        << connect(device, &AbstractDevice::dataReady, this, &CortexCore::onDeviceData, Qt::QueuedConnection)
        << connect(device, &AbstractDevice::connected, this,
                   [name] { kxDebug() << QStringLiteral("DEVICE CONNECTED ") + name; }, Qt::QueuedConnection)
        << connect(device, &AbstractDevice::batteryLevelUpdated, this, &CortexCore::deviceBatteryLevelUpdated,
                   Qt::DirectConnection)
        << connect(device, &AbstractDevice::impedanceFetched, this, &CortexCore::newImpedances,
                   Qt::QueuedConnection)
        << connect(
               device, &AbstractDevice::disconnected, this,
               [this, name] {
                   pauseRecord();
                   reconnectToDevice(name);
               },
               Qt::QueuedConnection)
        << connect(device, &AbstractDevice::wrongDataRate, this, [this, name] { reconnectToDevice(name); },
                   Qt::QueuedConnection);
}

void CortexCore::dropDeviceConnections()
{
    for (const auto& connection : std::as_const(m_deviceConnections))
        disconnect(connection);
    m_deviceConnections.clear();
}

void CortexCore::stopCurrentDevice()
{
    dropDeviceConnections();
    if (!m_deviceStarted)
        return;
    stopDevice();
}

void CortexCore::stopDevice()
{
    dropDeviceConnections();
    m_startingName.clear();
    if (!m_currentDevice)
        return;
    m_currentDevice->stop();
    m_currentDevice->close();
    m_currentDevice = nullptr;
    m_deviceStarted = false;
    m_currentInfo = DeviceInfo();
    {
        QMutexLocker locker(&m_dataMutex);
        m_montage.clear();
        m_pipeline.clear();
        m_channelCount = 0;
        m_samplingRate = 0;
        m_histories.reset(0, 0, 0);
        m_metering.stopSpectrum();
    }
    Q_EMIT deviceStopped();
}

bool CortexCore::isDeviceStarted() const { return m_deviceStarted; }
AbstractDevice* CortexCore::currentDevice() const { return m_currentDevice; }
DeviceInfo CortexCore::currentDeviceInfo() const { return m_currentInfo; }
DeviceInfo CortexCore::getCurrentDevice() const { return m_currentInfo; }
float CortexCore::getCurrentDeviceFrequency() const { return m_samplingRate; }

// ---------------------------------------------------------------------------------------
// Data path

void CortexCore::onDeviceData(QList<QList<float>> block)
{
    // Blocks already queued when their device was stopped belong to no session any more.
    if (!m_currentDevice || sender() != m_currentDevice)
        return;
    addDataChannelWise(std::move(block));
}

CortexDataResult CortexCore::addDataChannelWise(QList<QList<float>> block)
{
    QMutexLocker locker(&m_dataMutex);
    CortexDataResult result;
    if (block.isEmpty())
        return result;

    m_histories.appendDevice(block);

    // A block whose channel count is not the device's (or that lacks inputs the montage reads)
    // passes as it is. Said once per layout and block shape: it would otherwise repeat on every block.
    QList<QList<float>> montage;
    if (block.size() != m_channelCount || !m_pipeline.buildMontage(block, montage)) {
        if (m_reportedMismatch != block.size()) {
            const int expected = block.size() != m_channelCount ? m_channelCount : m_pipeline.requiredInputs();
            kxDebug() << QStringLiteral("Montage %1 vs %2").arg(expected).arg(block.size());
            m_reportedMismatch = int(block.size());
        }
        montage = block;
    }
    m_histories.appendMontage(montage);

    const QList<QList<float>> filtered = m_pipeline.filter(montage);
    m_histories.appendFiltered(filtered);
    result.filteredBlock = filtered;

    Q_EMIT newDataByChannel(filtered);
    emitOptionalDataSignals(filtered);

    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    m_metering.processBlock(filtered);
    m_metering.process(filtered, now, result);

    const QList<int>& quality = m_pipeline.qualities();
    result.channelValues.reserve(quality.size());
    for (int value : quality)
        result.channelValues.append(float(value));
    Q_EMIT newSignalQuality(quality);

    if (m_record && !m_recordPaused) {
        if (!m_record->write(filtered, block, now))
            stopRecordAfterFailure();
        Q_EMIT recordDurationChanged(m_record->durationSeconds());
    }

    Q_EMIT newCortexDataResult(result);
    return result;
}

// The flat forms cost a copy of every sample, so they are built only for listeners.
void CortexCore::emitOptionalDataSignals(const QList<QList<float>>& filtered)
{
    static const QMetaMethod newDataSignal = QMetaMethod::fromSignal(&CortexCore::newData);
    static const QMetaMethod channelWiseSignal = QMetaMethod::fromSignal(&CortexCore::newChannelWiseData);
    const bool wantsSampleWise = isSignalConnected(newDataSignal);
    const bool wantsChannelWise = isSignalConnected(channelWiseSignal);
    if ((!wantsSampleWise && !wantsChannelWise) || filtered.isEmpty())
        return;
    const int channels = int(filtered.size());
    const qsizetype samples = filtered.first().size();
    if (wantsChannelWise) {
        QList<float> channelWise;
        channelWise.reserve(channels * samples);
        for (const QList<float>& channel : filtered)
            channelWise.append(channel);
        Q_EMIT newChannelWiseData(channelWise, channels);
    }
    if (wantsSampleWise) {
        QList<float> sampleWise(channels * samples);
        for (int c = 0; c < channels; ++c) {
            const QList<float>& channel = filtered[c];
            for (qsizetype k = 0; k < samples && k < channel.size(); ++k)
                sampleWise[k * channels + c] = channel[k];
        }
        Q_EMIT newData(sampleWise, channels);
    }
}

CortexDataResult CortexCore::addData(QList<float> sampleWise)
{
    const int channels = m_channelCount;
    if (channels <= 0 || sampleWise.size() < channels)
        return CortexDataResult();
    const qsizetype samples = sampleWise.size() / channels;
    QList<QList<float>> block(channels);
    for (int c = 0; c < channels; ++c) {
        QList<float>& channel = block[c];
        channel.resize(samples);
        for (qsizetype k = 0; k < samples; ++k)
            channel[k] = sampleWise[k * channels + c];
    }
    return addDataChannelWise(std::move(block));
}

void CortexCore::appendAndCropDataVector(QList<float>& target, QList<float>& source, int maxSize)
{
    target.append(source);
    const qsizetype excess = target.size() - qMax(0, maxSize);
    if (excess > 0)
        target.remove(0, excess); // moves the list's begin; nothing is copied
}

FilterChain::Settings CortexCore::engineFilterSettings() const
{
    FilterChain::Settings settings;
    settings.samplingRate = m_samplingRate;
    settings.hpf = m_hpf;
    settings.hpfOrder = m_hpfOrder;
    settings.lpf = m_lpf;
    settings.lpfOrder = m_lpfOrder;
    settings.bsf = m_bsf;
    settings.bsf2 = m_bsf2;
    settings.useFir = Use_FIR;
    return settings;
}

int CortexCore::historyLength() const
{
    return int(m_storageTime * m_samplingRate);
}

void CortexCore::recreateDataAndFilters(bool recreateFilters)
{
    {
        QMutexLocker locker(&m_dataMutex);
        m_pipeline.configure(m_montage, m_samplingRate, engineFilterSettings(), recreateFilters);
        m_histories.reset(m_channelCount, int(m_montage.size()), historyLength());
        m_reportedMismatch = -1;
        const QStringList names = getCurrentMontageChannelNames();
        m_metering.updateChannelNames(names);
        m_metering.setHistorySpanMs(qint64(m_storageTime * 1000));
        m_metering.followChannels(names, m_samplingRate);
    }
    Q_EMIT dataRecreated();
}

// ---------------------------------------------------------------------------------------
// Filters

template<typename T>
void CortexCore::storeFilterSetting(T& target, T value, bool apply)
{
    target = value;
    if (apply)
        recreateDataAndFilters(true);
}

void CortexCore::setHPF(float value, bool apply) { storeFilterSetting(m_hpf, qMax(0.0f, value), apply); }

void CortexCore::setLPF(float value, bool apply) { storeFilterSetting(m_lpf, qMax(0.0f, value), apply); }

void CortexCore::setBSF(float value, bool apply) { storeFilterSetting(m_bsf, qMax(0.0f, value), apply); }

void CortexCore::setBSF2(float value, bool apply) { storeFilterSetting(m_bsf2, qMax(0.0f, value), apply); }

void CortexCore::setHPFOrder(int order, bool apply) { storeFilterSetting(m_hpfOrder, qBound(1, order, 8), apply); }

void CortexCore::setLPFOrder(int order, bool apply) { storeFilterSetting(m_lpfOrder, qBound(1, order, 8), apply); }

float CortexCore::getHPF() const { return m_hpf; }
float CortexCore::getLPF() const { return m_lpf; }
float CortexCore::getBSF() const { return m_bsf; }
float CortexCore::getBSF2() const { return m_bsf2; }
int CortexCore::getHPFOrder() const { return m_hpfOrder; }
int CortexCore::getLPFOrder() const { return m_lpfOrder; }

void CortexCore::setFilters(float hpf, float lpf, float bsf, float bsf2)
{
    setHPF(hpf, false);
    setLPF(lpf, false);
    setBSF(bsf, false);
    setBSF2(bsf2, false);
    recreateDataAndFilters(true);
}

void CortexCore::getFilters(float& hpf, float& lpf, float& bsf, float& bsf2) const
{
    hpf = m_hpf;
    lpf = m_lpf;
    bsf = m_bsf;
    bsf2 = m_bsf2;
}

void CortexCore::setFilter(Filters type, int channel, float value, bool apply)
{
    if (channel < 0 || channel >= m_montage.size())
        return;
    MontageChannel& target = m_montage[channel];
    const double cutoff = qMax(0.0f, value);
    switch (type) {
    case HPF: target.highPass = cutoff; break;
    case LPF: target.lowPass = cutoff; break;
    case BSF: target.bandStop = cutoff; break;
    }
    if (apply)
        recreateDataAndFilters(true);
}

float CortexCore::getFilter(Filters type, int channel) const
{
    const FilterChain::Settings engine = engineFilterSettings();
    const FilterChain::Settings used = (channel < 0 || channel >= m_montage.size())
        ? engine
        : ChannelPipeline::effectiveFilters(m_montage[channel], engine);
    switch (type) {
    case HPF: return used.hpf;
    case LPF: return used.lpf;
    case BSF: return used.bsf;
    }
    return 0;
}

// ---------------------------------------------------------------------------------------
// Histories and grabs

void CortexCore::setStorageTimeSeconds(int seconds)
{
    QMutexLocker locker(&m_dataMutex);
    m_storageTime = float(qMax(0, seconds));
    m_histories.setMaxSamples(historyLength());
    m_metering.setHistorySpanMs(qint64(m_storageTime * 1000));
}

int CortexCore::getStorageTimeSeconds() const { return int(m_storageTime); }

void CortexCore::enableDataGrabMode(bool enable)
{
    QMutexLocker locker(&m_dataMutex);
    m_grabMode = enable;
    m_histories.setGrabEnabled(enable);
}

bool CortexCore::isDataGrabModeEnabled() const { return m_grabMode; }

QList<QList<float>> CortexCore::getRawDeviceData() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_histories.device();
}

QList<QList<float>> CortexCore::getRawData() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_histories.montage();
}

QList<QList<float>> CortexCore::getFilteredData() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_histories.filtered();
}

QList<QList<float>> CortexCore::grabOriginalData()
{
    QMutexLocker locker(&m_dataMutex);
    return m_histories.grabDevice();
}

QList<QList<float>> CortexCore::grabFilteredData()
{
    QMutexLocker locker(&m_dataMutex);
    return m_histories.grabFiltered();
}

QList<int> CortexCore::getSignalQuality() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_pipeline.qualities();
}

// ---------------------------------------------------------------------------------------
// Channels and montage

void CortexCore::setChannelScale(int channel, double scale, bool apply)
{
    if (channel < 0 || channel >= m_montage.size())
        return;
    m_montage[channel].scale = scale;
    if (apply)
        recreateDataAndFilters(false);
}

void CortexCore::setChannelOffset(int channel, double offset, bool apply)
{
    if (channel < 0 || channel >= m_montage.size())
        return;
    m_montage[channel].offset = offset;
    if (apply)
        recreateDataAndFilters(false);
}

void CortexCore::setChannelVisualScale(int channel, double scale, bool)
{
    if (channel < 0 || channel >= m_montage.size())
        return;
    m_montage[channel].visualScale = scale;
    Q_EMIT channelVisualScaleChanged(channel, scale);
}

double CortexCore::getChannelScale(int channel) const { return montageChannel(channel).scale; }
double CortexCore::getChannelOffset(int channel) const { return montageChannel(channel).offset; }
double CortexCore::getChannelVisualScale(int channel) const { return montageChannel(channel).visualScale; }

QList<MontageChannel> CortexCore::getCurrentMontage() const { return m_montage; }

QList<QString> CortexCore::getCurrentMontageChannelNames() const
{
    QList<QString> names;
    for (const MontageChannel& channel : m_montage)
        names.append(channel.name);
    return names;
}

MontageChannel CortexCore::montageChannel(int index) const
{
    if (index < 0 || index >= m_montage.size())
        return MontageChannel();
    return m_montage[index];
}

int CortexCore::getMontageChannelIndex(QString name) const
{
    for (int i = 0; i < m_montage.size(); ++i) {
        if (m_montage[i].name == name)
            return i;
    }
    for (int i = 0; i < m_montage.size(); ++i) {
        if (m_montage[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

void CortexCore::setMontageChannelNames(QList<QString> names)
{
    {
        QMutexLocker locker(&m_dataMutex);
        const qsizetype count = qMin(names.size(), m_montage.size());
        for (qsizetype i = 0; i < count; ++i)
            m_montage[i].name = names[i];
        m_metering.updateChannelNames(getCurrentMontageChannelNames());
    }
    Q_EMIT montageChanged();
}

bool CortexCore::setMontage(QList<MontageChannel> montage)
{
    QString refusal;
    if (m_recording)
        refusal = QStringLiteral("a recording is running");
    else if (!m_deviceStarted)
        refusal = QStringLiteral("no device is started");
    else if (montage.isEmpty())
        refusal = QStringLiteral("the montage has no channels");
    for (const MontageChannel& channel : std::as_const(montage)) {
        if (refusal.isEmpty() && (channel.group1 < 0 || channel.group1 >= m_channelCount
                                  || channel.group2 < -1 || channel.group2 >= m_channelCount))
            refusal = QStringLiteral("channel %1 reads an input the device lacks").arg(channel.name);
    }
    if (!refusal.isEmpty()) {
        kxDebug() << QStringLiteral("Montage not changed: ") + refusal;
        return false;
    }
    m_montage = montage;
    recreateDataAndFilters(true);
    Q_EMIT montageChanged();
    return true;
}

QList<int> CortexCore::channelIndexesFromNameString(QString names) const
{
    QList<int> indexes;
    for (const QString& name : TextHelper::splitAndTrim(names)) {
        const int index = getMontageChannelIndex(name);
        if (index >= 0)
            indexes.append(index);
    }
    return indexes;
}

// ---------------------------------------------------------------------------------------
// Metering

bool CortexCore::startSpectrumCalculation(float windowSeconds, float stepSeconds, float hanningPercent)
{
    QMutexLocker locker(&m_dataMutex);
    m_metering.startSpectrum(getCurrentMontageChannelNames(), m_samplingRate, windowSeconds, stepSeconds,
                             hanningPercent);
    return true;
}

float CortexCore::getSpectrumWindowSeconds() const { return m_metering.windowSeconds(); }
float CortexCore::getSpectrumWindowStepSeconds() const { return m_metering.stepSeconds(); }
float CortexCore::getSpectrumHanningPercent() const { return m_metering.hanningPercent(); }
float CortexCore::getSpectrumFrequencyStep() const { return m_metering.frequencyStep(); }

QList<float> CortexCore::getCurrentSpectrumFrequencies() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.frequencies();
}

QList<QList<float>> CortexCore::getLastSpectrum() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.lastSpectrum();
}

QList<TimestampedData> CortexCore::getSpectrumData() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.spectrumHistory();
}

QList<TimestampedData> CortexCore::grabSpectrumData()
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.grabSpectrumHistory();
}

QList<StandartRhythmSample> CortexCore::getLastStandartRhythms() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.lastRhythms();
}

QList<QList<StandartRhythmSample>> CortexCore::grabLastStandartRhythms()
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.grabRhythms();
}

bool CortexCore::startMetaIndexMetering(int index, QList<int> channels, float p3, float p4, float p5, float p6,
                                        float p7, float p8, int p9, int p10, int p11, int p12, bool p13)
{
    QMutexLocker locker(&m_dataMutex);
    RhythmNormalizer normalizer;
    normalizer.init(p3, p4, p5, p6, p10, p7, p8, p11, p9, p12, p13);
    m_metering.startIndex(index, channels, normalizer);
    return true;
}

bool CortexCore::startMetaIndexMetering(int index, QString channels, float p3, float p4, float p5, float p6,
                                        float p7, float p8, int p9, int p10, int p11, int p12, bool p13)
{
    return startMetaIndexMetering(index, channelIndexesFromNameString(channels), p3, p4, p5, p6, p7, p8, p9, p10,
                                  p11, p12, p13);
}

// Metering, once started, runs until it is started again with new parameters.
void CortexCore::stopMetaIndexMetering(int) {}

float CortexCore::getCurrentMetaIndexLevel(int index) const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.currentLevel(index);
}

RhythmNormSample CortexCore::getLastMetaIndexResult(int index) const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.lastIndexResult(index);
}

QList<RhythmNormSample> CortexCore::grabMetaIndexData(int index)
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.grabIndexData(index);
}

void CortexCore::setMeditationRange(float minimum, float maximum)
{
    QMutexLocker locker(&m_dataMutex);
    m_metering.setRange(EngineMetering::Meditation, minimum, maximum);
}

void CortexCore::setConcentrationRange(float minimum, float maximum)
{
    QMutexLocker locker(&m_dataMutex);
    m_metering.setRange(EngineMetering::Concentration, minimum, maximum);
}

double CortexCore::getMeditationMinimum() const { return m_metering.rangeMinimum(EngineMetering::Meditation); }
double CortexCore::getMeditationMaximum() const { return m_metering.rangeMaximum(EngineMetering::Meditation); }
double CortexCore::getConcentrationMinimum() const { return m_metering.rangeMinimum(EngineMetering::Concentration); }
double CortexCore::getConcentrationMaximum() const { return m_metering.rangeMaximum(EngineMetering::Concentration); }

void CortexCore::addCustomBCIAlgorithm(CustomBCIAlgorithm* algorithm)
{
    QMutexLocker locker(&m_dataMutex);
    m_metering.addAlgorithm(algorithm, getCurrentMontageChannelNames());
}

bool CortexCore::removeCustomBCIAlgorithm(QString name)
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.removeAlgorithm(name);
}

void CortexCore::clearCustomBCIAlgorithms()
{
    QMutexLocker locker(&m_dataMutex);
    m_metering.clearAlgorithms();
}

QList<CustomBCIAlgorithm*> CortexCore::getCustomAlgoritms() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_metering.algorithms();
}

// ---------------------------------------------------------------------------------------
// Recording

namespace {
// Annotations made just before a recording starts still belong to it.
constexpr qint64 PendingAnnotationWindowMs = 5000;
const QString AnnotationKey = QStringLiteral("Annotation");
}

void CortexCore::setDataFolder(QString folder)
{
    m_dataFolder = folder;
}

bool CortexCore::startRecord(QString path, bool)
{
    if (m_recording) {
        kxDebug() << QStringLiteral("STOP ON START");
        stopRecord();
    }
    m_recordPaused = false;
    m_lastRecordError.clear();
    if (!(m_samplingRate > 0)) {
        m_lastRecordError = QStringLiteral("no device is streaming");
        return false;
    }
    const QDateTime now = QDateTime::currentDateTime();
    QString stem = path.isEmpty()
        ? QDir(m_dataFolder).filePath(now.toString(QStringLiteral("yyyy.MM.dd-hh.mm.ss")))
        : path;
    if (stem.endsWith(QStringLiteral(".edf"), Qt::CaseInsensitive))
        stem.chop(4);
    m_lastRecordFileName = path;

    RecordingSession::Setup setup;
    setup.stem = stem;
    setup.samplingRate = m_samplingRate;
    setup.montageNames = getCurrentMontageChannelNames();
    setup.deviceChannelNames = m_currentDevice ? m_currentDevice->channelNames() : QStringList();
    const QList<QPair<QString, float>> filters = { { QStringLiteral("HP"), m_hpf }, { QStringLiteral("LP"), m_lpf },
                                                   { QStringLiteral("BS"), m_bsf }, { QStringLiteral("BS2"), m_bsf2 } };
    for (const auto& [label, value] : filters) {
        if (value > 0)
            setup.prefilters.insert(label, value);
    }
    setup.rawBdf = m_recordRaw;
    setup.oxd = m_recordOxd;
    setup.startMs = now.toMSecsSinceEpoch();
    setup.patient = m_patient;
    setup.sideHeader = QJsonObject { { QStringLiteral("device"), m_currentInfo.name },
                                     { QStringLiteral("samplingRate"), double(m_samplingRate) },
                                     { QStringLiteral("deviceChannels"), QJsonArray::fromStringList(setup.deviceChannelNames) },
                                     { QStringLiteral("montageChannels"), QJsonArray::fromStringList(setup.montageNames) },
                                     { QStringLiteral("HPF"), m_hpf },
                                     { QStringLiteral("LPF"), m_lpf },
                                     { QStringLiteral("BSF"), m_bsf },
                                     { QStringLiteral("BSF2"), m_bsf2 },
                                     { QStringLiteral("startMs"), setup.startMs } };

    const qint64 bytesPerSecond = RecordingSpaceWatch::bytesPerSecond(setup);
    const QString folder = QFileInfo(stem).absolutePath();
    if (const QString refused = RecordingSpaceWatch::refusal(folder, bytesPerSecond); !refused.isEmpty()) {
        m_lastRecordError = refused;
        kxDebug() << QStringLiteral("Recording not started: ") + refused;
        return false;
    }
    auto session = std::make_unique<RecordingSession>();
    QString error;
    if (!session->open(setup, error)) {
        m_lastRecordError = error;
        kxDebug() << QStringLiteral("Recording not started: ") + error;
        return false;
    }
    {
        QMutexLocker locker(&m_dataMutex);
        m_record = std::move(session);
        m_recording = true;
    }
    Q_EMIT isRecordingChanged(true);

    const QList<QPair<QString, QVariant>> items = {
        { QStringLiteral("Device"), m_currentInfo.name },
        { QStringLiteral("Date"), now.toString(Qt::ISODateWithMs) },
        { QStringLiteral("Timestamp"), now.toMSecsSinceEpoch() },
        { QStringLiteral("Frequency"), double(m_samplingRate) },
        { QStringLiteral("Channels"), setup.montageNames.join(QLatin1Char(',')) },
        { QStringLiteral("ChannelCount"), int(setup.montageNames.size()) },
        { QStringLiteral("HPF"), double(m_hpf) },
        { QStringLiteral("LPF"), double(m_lpf) },
        { QStringLiteral("BSF"), double(m_bsf) },
        { QStringLiteral("BSF2"), double(m_bsf2) },
    };
    for (const auto& [key, value] : items)
        addLogItem(value, key, now);
    writePendingAnnotations();
    spaceWatch()->start(folder, bytesPerSecond);
    Q_EMIT recordStarted(m_record->edfPath());
    return true;
}

void CortexCore::writePendingAnnotations()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const QList<PendingLogItem> pending = std::exchange(m_pendingLog, {});
    for (const PendingLogItem& item : pending) {
        if (std::abs(item.time.toMSecsSinceEpoch() - now) > PendingAnnotationWindowMs)
            continue;
        m_record->log(item.value, item.key, item.time);
        if (item.key == AnnotationKey)
            m_record->addAnnotation(item.value.toString(), 0, 0);
    }
}

// A file of the recording could not be written (a full disk): the recording ends cleanly, a
// turn later, so the data path that noticed it finishes first. Streaming goes on.
void CortexCore::stopRecordAfterFailure()
{
    if (m_recordFailing)
        return;
    m_recordFailing = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_recordFailing = false;
            if (!m_record)
                return;
            const QString error = m_record->failure();
            GlobalConsole::writeLine(QStringLiteral("RECORDING STOPPED: ") + error);
            stopRecord();
            m_lastRecordError = error;
            Q_EMIT recordFailed(error);
        },
        Qt::QueuedConnection);
}

RecordingSpaceWatch* CortexCore::spaceWatch()
{
    if (!m_spaceWatch) {
        m_spaceWatch = new RecordingSpaceWatch(this);
        connect(m_spaceWatch, &RecordingSpaceWatch::spaceLow, this, &CortexCore::recordSpaceLow);
    }
    return m_spaceWatch;
}

QList<QString> CortexCore::stopRecord()
{
    if (!m_record)
        return {};
    Q_EMIT recordStopping();
    addLogItem(QString(), QStringLiteral("StopRecord"));
    spaceWatch()->stop();
    const float duration = m_record->durationSeconds();
    QList<QString> paths;
    {
        QMutexLocker locker(&m_dataMutex);
        paths = m_record->close();
        m_record.reset();
        m_recording = false;
        m_recordPaused = false;
    }
    Q_EMIT isRecordingChanged(false);
    Q_EMIT recordStopped(paths, duration);
    return paths;
}

bool CortexCore::pauseRecord()
{
    if (!m_recording || m_recordPaused)
        return false;
    {
        QMutexLocker locker(&m_dataMutex);
        m_record->pause();
        m_recordPaused = true;
    }
    m_pauseStartedMs = QDateTime::currentMSecsSinceEpoch();
    addLogItem(QString(), QStringLiteral("RECORD_PAUSE"));
    Q_EMIT recordPaused();
    return true;
}

bool CortexCore::continueRecord(QString)
{
    if (!m_recording || !m_recordPaused)
        return false;
    {
        QMutexLocker locker(&m_dataMutex);
        m_record->resume();
        m_recordPaused = false;
    }
    addLogItem(QString(), QStringLiteral("RECORD_CONTINUE"));
    const double pausedSeconds = double(QDateTime::currentMSecsSinceEpoch() - m_pauseStartedMs) / 1000.0;
    addAnnotation(QStringLiteral("PAUSED %1s").arg(pausedSeconds, 0, 'f', 1));
    Q_EMIT recordContinued();
    return true;
}

int CortexCore::addAnnotation(QString text, int onsetMs, int durationMs)
{
    addLogItem(text, AnnotationKey);
    int onset = -1;
    if (m_record) {
        QMutexLocker locker(&m_dataMutex);
        onset = m_record->addAnnotation(text, onsetMs, durationMs);
    }
    Q_EMIT newAnnotation(text, onset);
    return onset;
}

bool CortexCore::addFileToRecord(QString name, QByteArray data)
{
    return m_record && m_record->addFile(name, data);
}

bool CortexCore::addLogItem(QVariant value, QString key, QDateTime time)
{
    if (m_recording && m_record) {
        if (m_record->log(value, key, time))
            return true;
        if (!m_record->failure().isEmpty())
            stopRecordAfterFailure();
        return false;
    }
    if (key == AnnotationKey) {
        m_pendingLog.append({ time, key, value });
        return true;
    }
    kxDebug() << QStringLiteral("Unable to put log: REC - %1, FILE: %2")
                     .arg(m_recording ? QStringLiteral("true") : QStringLiteral("false"),
                          m_record ? m_record->stem() : QString());
    return false;
}

float CortexCore::currentRecordDuration() const
{
    QMutexLocker locker(&m_dataMutex);
    return m_record ? m_record->durationSeconds() : 0.0f;
}
