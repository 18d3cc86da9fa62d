#include "app/OrvexModel.h"

#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

OrvexModel::OrvexModel(QObject* parent)
    : QObject(parent)
    , m_settings(new OrvexSettings(this))
    , m_virtualDevices(new VirtualDevicesSettings(this))
    , m_engine(new CortexCore(this))
{
    CortexCore::Use_FIR = m_settings->getUseFIR();
    m_engine->setFilters(m_settings->getHPF(), m_settings->getLPF(), m_settings->getBSF(), m_settings->getBSF2());
    m_engine->setHPFOrder(m_settings->getHPFOrder(), false);
    m_engine->setLPFOrder(m_settings->getLPFOrder(), false);
    m_engine->setStorageTimeSeconds(m_settings->getStorageTime());
    m_engine->setVirtualDeviceSettings(m_virtualDevices);
    applyRecordingSettings();
    GlobalConsole::enableLogging(m_settings->getLoggingEnabled());

    connect(m_settings, &KxSettings::settingChanged, this, &OrvexModel::applyEngineSetting);
    connect(m_engine, &CortexCore::deviceStarted, this, &OrvexModel::startMetering);
    connect(m_virtualDevices, &KxSettings::settingChanged, this,
            [this] { m_engine->setVirtualDeviceSettings(m_virtualDevices); });
}

void OrvexModel::applyEngineSetting(const QString& name)
{
    if (name == QLatin1String("HPF"))
        m_engine->setHPF(m_settings->getHPF(), true);
    else if (name == QLatin1String("LPF"))
        m_engine->setLPF(m_settings->getLPF(), true);
    else if (name == QLatin1String("BSF"))
        m_engine->setBSF(m_settings->getBSF(), true);
    else if (name == QLatin1String("BSF2"))
        m_engine->setBSF2(m_settings->getBSF2(), true);
    else if (name == QLatin1String("HPFOrder"))
        m_engine->setHPFOrder(m_settings->getHPFOrder(), true);
    else if (name == QLatin1String("LPFOrder"))
        m_engine->setLPFOrder(m_settings->getLPFOrder(), true);
    else if (name == QLatin1String("StorageTime"))
        m_engine->setStorageTimeSeconds(m_settings->getStorageTime());
    else if (name == QLatin1String("DataFolder") || name == QLatin1String("RecordRawEDF")
             || name == QLatin1String("RecordOXD"))
        applyRecordingSettings();
    else if (name == QLatin1String("LoggingEnabled"))
        GlobalConsole::enableLogging(m_settings->getLoggingEnabled());
    else if ((name.startsWith(QLatin1String("Spectrum")) || name.startsWith(QLatin1String("Meditation"))
              || name.startsWith(QLatin1String("Concentration")))
             && m_engine->isDeviceStarted())
        startMetering();
    else if (name == QLatin1String("UseFIR")) {
        CortexCore::Use_FIR = m_settings->getUseFIR();
        m_engine->recreateDataAndFilters(true);
    }
}

KxSettings* OrvexModel::settingsOwning(const QString& key) const
{
    if (m_settings->getPropertyByName(key))
        return m_settings;
    if (m_virtualDevices->getPropertyByName(key))
        return m_virtualDevices;
    return nullptr;
}

void OrvexModel::setPersistent(bool persistent)
{
    m_settings->setAutoSave(persistent);
    m_virtualDevices->setAutoSave(persistent);
}

QJsonObject OrvexModel::allCapabilities() const
{
    QJsonObject all;
    all.insert(QStringLiteral("settings"), m_settings->getAllCapabilitiesJson(false));
    all.insert(QStringLiteral("virtualDeviceSettings"), m_virtualDevices->getAllCapabilitiesJson(false));
    return all;
}

void OrvexModel::startMetering()
{
    m_engine->startSpectrumCalculation(m_settings->getSpectrumWindowSeconds(), m_settings->getSpectrumStepSeconds(),
                                       m_settings->getSpectrumHanningPercent());
    m_engine->setMeditationRange(m_settings->getMeditationMinFrequency(), m_settings->getMeditationMaxFrequency());
    m_engine->setConcentrationRange(m_settings->getConcentrationMinFrequency(),
                                    m_settings->getConcentrationMaxFrequency());
    startIndex(CortexCore::Meditation, QStringLiteral("Meditation"));
    startIndex(CortexCore::Concentration, QStringLiteral("Concentration"));
}

// The settings of one index mapped onto the metering arguments (see docs/metering.md).
void OrvexModel::startIndex(int index, const QString& prefix)
{
    auto number = [this, &prefix](const char* key) {
        return m_settings->property(qPrintable(prefix + QLatin1String(key))).toDouble();
    };
    const int history = int(qMax(number("LowThreshold4"), number("TopThreshold4")));
    m_engine->startMetaIndexMetering(index, m_settings->property(qPrintable(prefix + QLatin1String("Channels"))).toString(),
                                     float(number("LowThreshold1")), float(number("TopThreshold1")),
                                     float(number("LowThreshold2")), float(number("LowThreshold3")),
                                     float(number("TopThreshold2")), float(number("TopThreshold3")), history,
                                     int(number("LowThresholdHistory")), int(number("TopThresholdHistory")),
                                     int(number("Smoothing")),
                                     m_settings->property(qPrintable(prefix + QLatin1String("LimitTo100"))).toBool());
}

void OrvexModel::applyRecordingSettings()
{
    m_engine->setDataFolder(m_settings->resolvedDataFolder());
    m_engine->enableRecordRawEDF(m_settings->getRecordRawEDF());
    m_engine->enableRecordOXD(m_settings->getRecordOXD());
}
