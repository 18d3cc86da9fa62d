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
    GlobalConsole::enableLogging(m_settings->getLoggingEnabled());

    connect(m_settings, &KxSettings::settingChanged, this, &OrvexModel::applyEngineSetting);
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
    else if (name == QLatin1String("LoggingEnabled"))
        GlobalConsole::enableLogging(m_settings->getLoggingEnabled());
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
