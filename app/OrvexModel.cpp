#include "app/OrvexModel.h"

#include "app/CustomAlgorithmRunner.h"
#include "app/DeviceMontageApplier.h"
#include "app/LossMarker.h"
#include "app/RecordingResumer.h"
#include "app/ui/UiModel.h"
#include "core/CortexCore.h"
#include "server/CommandReferencePage.h"
#include "server/OrvexDataServer.h"
#include "server/StaticWebFolder.h"
#include "server/UserAccountStore.h"
#include "services/GlobalConsole.h"
#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMetaProperty>
#include <QStandardPaths>
#include <QTimer>

namespace {
// The feedback screens a user can switch between; the first is shown at start.
const QStringList FeedbackScreens = { QStringLiteral("bars"), QStringLiteral("balloon"), QStringLiteral("spectrum") };
}

OrvexModel::OrvexModel(OrvexSettings* settings, QObject* parent)
    : DataServerContext(parent)
    , m_settings(settings ? settings : new OrvexSettings)
    , m_virtualDevices(new VirtualDevicesSettings(this))
    , m_accounts(new UserAccountStore(UserAccountStore::defaultFilePath(), this))
    , m_feedbackScreen(FeedbackScreens.first())
{
    m_settings->setParent(this);
    CortexCore::Use_FIR = m_settings->getUseFIR();
    const int nodes = qMax(1, m_settings->getEngineNodes());
    for (int i = 0; i < nodes; ++i)
        m_engines.append(createEngine());
    applyLogging();

    connect(m_settings, &KxSettings::settingChanged, this, &OrvexModel::applyEngineSetting);
    connect(m_virtualDevices, &KxSettings::settingChanged, this, [this] {
        for (CortexCore* engine : qAsConst(m_engines))
            engine->setVirtualDeviceSettings(m_virtualDevices);
    });
}

OrvexModel::~OrvexModel() = default;

CortexCore* OrvexModel::createEngine()
{
    auto* engine = new CortexCore(this);
    engine->setFilters(m_settings->getHPF(), m_settings->getLPF(), m_settings->getBSF(), m_settings->getBSF2());
    engine->setHPFOrder(m_settings->getHPFOrder(), false);
    engine->setLPFOrder(m_settings->getLPFOrder(), false);
    engine->setStorageTimeSeconds(m_settings->getStorageTime());
    engine->setVirtualDeviceSettings(m_virtualDevices);
    applyRecordingSettings(engine);
    connect(engine, &CortexCore::deviceStarted, this, [this, engine] { startMetering(engine); });
    new RecordingResumer(engine, m_settings, engine);
    new CustomAlgorithmRunner(engine, m_settings, this);
    new DeviceMontageApplier(engine, m_settings);
    new LossMarker(engine, engine);
    connect(engine, &CortexCore::recordSpaceLow, this, &OrvexModel::statusMessage);
    connect(engine, &CortexCore::recordFailed, this,
            [this](const QString& error) { Q_EMIT statusMessage(QStringLiteral("The recording stopped: ") + error); });
    return engine;
}

// What a change of each setting does to an engine (or to the model). A setting that is not
// here must be in settingsReadWhereUsed(), or a test fails: a new setting cannot be ignored
// by accident.
const QHash<QString, OrvexModel::SettingAction>& OrvexModel::settingActions()
{
    static const QHash<QString, SettingAction> actions = [] {
        QHash<QString, SettingAction> table {
            { "HPF", [](OrvexModel* m, CortexCore* e) { e->setHPF(m->m_settings->getHPF(), true); } },
            { "LPF", [](OrvexModel* m, CortexCore* e) { e->setLPF(m->m_settings->getLPF(), true); } },
            { "BSF", [](OrvexModel* m, CortexCore* e) { e->setBSF(m->m_settings->getBSF(), true); } },
            { "BSF2", [](OrvexModel* m, CortexCore* e) { e->setBSF2(m->m_settings->getBSF2(), true); } },
            { "HPFOrder", [](OrvexModel* m, CortexCore* e) { e->setHPFOrder(m->m_settings->getHPFOrder(), true); } },
            { "LPFOrder", [](OrvexModel* m, CortexCore* e) { e->setLPFOrder(m->m_settings->getLPFOrder(), true); } },
            { "StorageTime", [](OrvexModel* m, CortexCore* e) { e->setStorageTimeSeconds(m->m_settings->getStorageTime()); } },
            { "UseFIR", [](OrvexModel* m, CortexCore* e) {
                 CortexCore::Use_FIR = m->m_settings->getUseFIR();
                 e->recreateDataAndFilters(true);
             } },
            // Not per engine; applying them once per engine does no harm.
            { "LoggingEnabled", [](OrvexModel* m, CortexCore*) { m->applyLogging(); } },
            { "APIKey", [](OrvexModel* m, CortexCore*) {
                 if (m->m_server)
                     m->m_server->setApiKey(m->m_settings->getAPIKey());
             } },
        };
        for (const char* name : { "DataFolder", "RecordRawEDF", "RecordOXD" })
            table.insert(QLatin1String(name), [](OrvexModel* m, CortexCore* e) { m->applyRecordingSettings(e); });
        // Every spectrum and index setting restarts the metering of a running device.
        const QMetaObject& meta = OrvexSettings::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QString name = QLatin1String(meta.property(i).name());
            if (name.startsWith(QLatin1String("Spectrum")) || name.startsWith(QLatin1String("Meditation"))
                || name.startsWith(QLatin1String("Concentration")))
                table.insert(name, [](OrvexModel* m, CortexCore* e) {
                    if (e->isDeviceStarted())
                        m->startMetering(e);
                });
        }
        return table;
    }();
    return actions;
}

QStringList OrvexModel::settingsReadWhereUsed()
{
    return {
        QStringLiteral("FavouriteDevice"), QStringLiteral("StartFavouriteDevice"), // the device search
        QStringLiteral("ResumeRecordingAfterReconnect"), // RecordingResumer, when a device returns
        QStringLiteral("APIEnabled"), QStringLiteral("APIPort"), QStringLiteral("EngineNodes"), // at start
        QStringLiteral("CustomAlgorithms"), // CustomAlgorithmRunner follows it
        QStringLiteral("DeviceMontages"),   // DeviceMontageApplier, when a device starts
    };
}

void OrvexModel::applyEngineSetting(const QString& name)
{
    const SettingAction action = settingActions().value(name);
    if (!action)
        return;
    for (CortexCore* engine : qAsConst(m_engines))
        action(this, engine);
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

void OrvexModel::startMetering(CortexCore* engine)
{
    engine->startSpectrumCalculation(m_settings->getSpectrumWindowSeconds(), m_settings->getSpectrumStepSeconds(),
                                     m_settings->getSpectrumHanningPercent());
    engine->setMeditationRange(m_settings->getMeditationMinFrequency(), m_settings->getMeditationMaxFrequency());
    engine->setConcentrationRange(m_settings->getConcentrationMinFrequency(),
                                  m_settings->getConcentrationMaxFrequency());
    startIndex(engine, CortexCore::Meditation, QStringLiteral("Meditation"));
    startIndex(engine, CortexCore::Concentration, QStringLiteral("Concentration"));
    Q_EMIT controlOptionsChanged();
}

// The settings of one index mapped onto the metering arguments (see docs/metering.md).
void OrvexModel::startIndex(CortexCore* engine, int index, const QString& prefix)
{
    auto number = [this, &prefix](const char* key) {
        return m_settings->property(qPrintable(prefix + QLatin1String(key))).toDouble();
    };
    const int history = int(qMax(number("LowThreshold4"), number("TopThreshold4")));
    engine->startMetaIndexMetering(index, m_settings->property(qPrintable(prefix + QLatin1String("Channels"))).toString(),
                                   float(number("LowThreshold1")), float(number("TopThreshold1")),
                                   float(number("LowThreshold2")), float(number("LowThreshold3")),
                                   float(number("TopThreshold2")), float(number("TopThreshold3")), history,
                                   int(number("LowThresholdHistory")), int(number("TopThresholdHistory")),
                                   int(number("Smoothing")),
                                   m_settings->property(qPrintable(prefix + QLatin1String("LimitTo100"))).toBool());
}

void OrvexModel::applyRecordingSettings(CortexCore* engine)
{
    engine->setDataFolder(m_settings->resolvedDataFolder());
    engine->enableRecordRawEDF(m_settings->getRecordRawEDF());
    engine->enableRecordOXD(m_settings->getRecordOXD());
}

bool OrvexModel::startDataServer(int httpPort, QString& error)
{
    if (m_server)
        return true;
    const int port = httpPort > 0 ? httpPort : m_settings->getAPIPort();
    const QString folder = StaticWebFolder::defaultFolder();
    m_server = new OrvexDataServer(port, folder, this, this);
    m_server->setApiKey(m_settings->getAPIKey());
    if (!m_server->isHttpListening()) {
        error = QStringLiteral("the command interface cannot listen on port %1 (is another program using it?)")
                    .arg(port);
        delete m_server;
        m_server = nullptr;
        return false;
    }
    // Without the page the commands still work; the reason is on the console.
    StaticWebFolder::prepare(folder, CommandReferencePage::fill(CommandReferencePage::templateText(),
                                                                m_server->getCommands(),
                                                                QCoreApplication::applicationVersion(), port));
    m_server->start();
    return true;
}

int OrvexModel::getNodeCount() const
{
    return int(m_engines.size());
}

CortexCore* OrvexModel::getNode(int index) const
{
    return index >= 0 && index < m_engines.size() ? m_engines[index] : nullptr;
}

QString OrvexModel::getRecordsFolder() const
{
    return m_settings->resolvedDataFolder();
}

// The log file goes to the documents folder, which a fresh account may not have yet.
void OrvexModel::applyLogging()
{
    if (m_settings->getLoggingEnabled())
        QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    GlobalConsole::enableLogging(m_settings->getLoggingEnabled());
}

int OrvexModel::getApiPort() const
{
    return m_server ? m_server->portHTTP() : 0;
}

QStringList OrvexModel::getFeedbackScreens() const
{
    return FeedbackScreens;
}

bool OrvexModel::setCurrentFeedbackScreen(const QString& screen)
{
    if (!FeedbackScreens.contains(screen))
        return false;
    if (m_feedbackScreen != screen) {
        m_feedbackScreen = screen;
        Q_EMIT currentFeedbackScreenChanged(screen);
    }
    return true;
}

void OrvexModel::closeApplication()
{
    // After the reply to the request that asked for it has gone out.
    QTimer::singleShot(0, this, &OrvexModel::closeRequested);
}

bool OrvexModel::openLink(const QUrl& url)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        GlobalConsole::writeLine(QStringLiteral("No desktop to open ") + url.toString());
        return false;
    }
    return QDesktopServices::openUrl(url);
}

UiModel* OrvexModel::createUiModel(const QString& title)
{
    if (!m_ui)
        m_ui = new UiModel(this, title, this);
    return m_ui;
}

void OrvexModel::onRecordStarted(const QString& path)
{
    Q_EMIT statusMessage(QStringLiteral("Recording to ") + path);
}

void OrvexModel::onRecordStopped(const QList<QString>& paths, float durationSeconds)
{
    const QString text = QStringLiteral("Recording of %1 s saved: %2")
                             .arg(double(durationSeconds), 0, 'f', 1)
                             .arg(paths.isEmpty() ? QString() : paths.first());
    GlobalConsole::writeLine(text);
    Q_EMIT statusMessage(text);
}

void OrvexModel::onDeviceStopped()
{
    // A lost headset pauses the recording until the engine has reconnected it.
    Q_EMIT statusMessage(engine()->isRecording() ? QStringLiteral("Device stopped: the recording is paused")
                                                 : QStringLiteral("Device stopped"));
}
