#include "app/HeadlessSession.h"

#include "app/OrvexModel.h"
#include "core/CortexCore.h"
#include "devices/EDFVirtualDevice.h"
#include "devices/SimulatedHeadset.h"
#include "settings/VirtualDevicesSettings.h"
#include "dsp/CustomBCIAlgorithm.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>

HeadlessSession::HeadlessSession(OrvexModel* model, const CommandLineOptions& options, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_options(options)
{
}

bool HeadlessSession::start(QString& error)
{
    CortexCore* engine = m_model->engine();
    if (m_options.device == QLatin1String("none")) {
        // The command interface alone: a client searches and starts a device itself.
        if (m_options.durationSeconds > 0)
            QTimer::singleShot(qint64(m_options.durationSeconds * 1000.0), this, [this] { finish(0); });
        return true;
    }
    const bool started = m_options.device == QLatin1String("generator") ? startGenerator(error)
        : m_options.device == QLatin1String("headset-sim")               ? startHeadsetSimulator(error)
                                                                         : startFilePlayer(error);
    if (!started)
        return false;

    m_samplingRate = engine->getCurrentDeviceFrequency();
    if (m_options.record && !engine->startRecord(m_options.recordPath)) {
        error = QStringLiteral("cannot record: %1").arg(engine->lastRecordError());
        engine->stopDevice();
        return false;
    }
    if (!m_options.csvPath.isEmpty()) {
        if (!m_csv.open(m_options.csvPath, engine->getCurrentMontageChannelNames(), error)) {
            engine->stopDevice();
            return false;
        }
        m_csvOpen = true;
    }
    if (!m_options.csvMetricsPath.isEmpty()) {
        if (!openMetrics(error)) {
            engine->stopDevice();
            return false;
        }
        m_metricsOpen = true;
    }
    connect(engine, &CortexCore::recordFailed, this, [this](const QString& error) {
        std::fprintf(stderr, "orvexpro: the recording stopped: %s\n", qUtf8Printable(error));
        finish(1);
    });
    connect(engine, &CortexCore::newDataByChannel, this, &HeadlessSession::onData);
    connect(engine, &CortexCore::newCortexDataResult, this, &HeadlessSession::onResult);
    if (m_pushTimer) {
        // As fast as possible: every sample of the file once, then the run ends.
        const qint64 length = static_cast<EDFVirtualDevice*>(engine->currentDevice())->lengthSamples();
        m_targetSamples = m_options.durationSeconds > 0
            ? std::min(length, qRound64(m_options.durationSeconds * double(m_samplingRate)))
            : length;
        m_pushTimer->start();
    } else if (m_options.durationSeconds > 0) {
        // The duration is streaming time: the run ends when that much signal has arrived.
        m_targetSamples = qRound64(m_options.durationSeconds * double(m_samplingRate));
        QTimer::singleShot(qint64(m_options.durationSeconds * 1000.0) + StallGraceMs, Qt::PreciseTimer, this,
                           &HeadlessSession::onDeadline);
    }
    return true;
}

bool HeadlessSession::startGenerator(QString& error)
{
    CortexCore* engine = m_model->engine();
    engine->startDeviceSearch();
    for (const DeviceInfo& info : engine->getFoundDevices()) {
        if (info.name == QLatin1String("GeneratorDevice") && engine->startDevice(info, {}, -1))
            return true;
    }
    error = QStringLiteral("the signal generator cannot start: it is switched off "
                           "(GeneratorEnabled) or has no channel names (GeneratorChannelNames)");
    return false;
}

// The simulated headset replaces the Bluetooth search: the engine finds it, makes its device
// and starts it at its channel mode's rate, and reconnects to it like to a real one.
bool HeadlessSession::startHeadsetSimulator(QString& error)
{
    CortexCore* engine = m_model->engine();
    auto* headset = new SimulatedHeadset(m_model->virtualDevicesSettings(), engine);
    engine->setDeviceDiscovery(headset);
    engine->setHeadsetFactory([headset](const QBluetoothDeviceInfo& info, QObject* owner) {
        return headset->createDevice(info, owner);
    });
    QEventLoop wait;
    DeviceInfo found;
    const auto onFound = connect(engine, &CortexCore::deviceFound, &wait, [&](const DeviceInfo& info) {
        if (info.name == headset->advertisedName()) {
            found = info;
            wait.quit();
        }
    });
    QTimer::singleShot(SearchTimeoutMs, &wait, &QEventLoop::quit);
    engine->startDeviceSearch();
    if (found.name.isEmpty())
        wait.exec();
    disconnect(onFound);
    if (found.name.isEmpty()) {
        error = QStringLiteral("the simulated headset '%1' is not a headset name the engine accepts (HeadsetSimName)")
                    .arg(headset->advertisedName());
        return false;
    }
    if (!engine->startDevice(found, {}, -1)) {
        error = QStringLiteral("the simulated headset '%1' cannot start: its channel count has no channel mode")
                    .arg(found.name);
        return false;
    }
    return true;
}

bool HeadlessSession::startFilePlayer(QString& error)
{
    const QString path = m_options.device;
    if (!QFileInfo(path).isReadable()) {
        error = QStringLiteral("cannot read %1").arg(path);
        return false;
    }
    m_model->virtualDevicesSettings()->setTextValue(QStringLiteral("EDFPath"), QFileInfo(path).absoluteFilePath());
    CortexCore* engine = m_model->engine();
    engine->startDeviceSearch();
    for (const DeviceInfo& info : engine->getFoundDevices()) {
        if (info.name != QLatin1String("EDFVirtualDevice") || !engine->startDevice(info, {}, -1))
            continue;
        auto* player = static_cast<EDFVirtualDevice*>(engine->currentDevice());
        if (m_options.speed == 0) {
            player->stop();
            m_pushTimer = new QTimer(this);
            m_pushTimer->setInterval(0);
            connect(m_pushTimer, &QTimer::timeout, this, &HeadlessSession::pushFileBlocks);
        } else if (m_options.speed != 1) {
            const double speed = m_options.speed;
            const qint64 origin = systemTimeMs();
            player->setTimeSource([origin, speed] { return origin + qint64(double(systemTimeMs() - origin) * speed); });
        }
        return true;
    }
    error = QStringLiteral("cannot play %1: not a readable EDF/BDF recording (see --verbose)").arg(path);
    return false;
}

// A few blocks per turn of the event loop, so the engine works through them as they come.
void HeadlessSession::pushFileBlocks()
{
    constexpr int BlocksPerTurn = 16;
    auto* player = static_cast<EDFVirtualDevice*>(m_model->engine()->currentDevice());
    if (m_finished || !player)
        return;
    const int blockSamples = std::max(1, int(m_samplingRate / 25));
    m_nextFileSample = player->emitRange(m_nextFileSample, blockSamples, BlocksPerTurn);
    if (m_nextFileSample >= m_targetSamples)
        m_pushTimer->stop();
}

void HeadlessSession::onData(QList<QList<float>> block)
{
    if (m_finished || block.isEmpty())
        return;
    if (m_targetSamples > 0) {
        const qint64 wanted = m_targetSamples - m_samples;
        if (block.first().size() > wanted) {
            for (QList<float>& channel : block)
                channel.resize(wanted);
        }
    }
    const qint64 first = m_samples;
    m_samples += block.first().size();
    if (m_csvOpen && !m_csv.writeBlock(block, first, m_samplingRate)) {
        m_csvOpen = false;
        std::fprintf(stderr, "orvexpro: writing %s failed; stopping\n", qUtf8Printable(m_options.csvPath));
        finish(1);
        return;
    }
    if (m_targetSamples > 0 && m_samples >= m_targetSamples)
        finish(0);
}

// One row per spectrum step: each channel's rhythm shares, both indices, every custom algorithm.
bool HeadlessSession::openMetrics(QString& error)
{
    CortexCore* engine = m_model->engine();
    QStringList columns;
    for (const QString& channel : engine->getCurrentMontageChannelNames()) {
        for (const char* rhythm : { "alpha", "beta", "theta", "delta", "gamma" })
            columns.append(channel + QLatin1Char('_') + QLatin1String(rhythm));
    }
    columns << QStringLiteral("meditation") << QStringLiteral("concentration");
    for (CustomBCIAlgorithm* algorithm : engine->getCustomAlgoritms())
        columns.append(algorithm->getName());
    return m_metrics.open(m_options.csvMetricsPath, columns, error);
}

void HeadlessSession::onResult(const CortexDataResult& result)
{
    if (m_finished || !m_metricsOpen || !result.hasSpectrum)
        return;
    QList<double> values;
    for (const StandartRhythmSample& rhythms : m_model->engine()->getLastStandartRhythms())
        values << rhythms.alpha << rhythms.beta << rhythms.theta << rhythms.delta << rhythms.gamma;
    values << result.meditation.level << result.concentration.level;
    for (const QJsonObject& algorithm : result.algorithmResults)
        values << algorithm.value(QStringLiteral("value")).toDouble();
    if (m_metrics.writeRow(double(m_samples) / m_samplingRate, values))
        return;
    m_metricsOpen = false;
    std::fprintf(stderr, "orvexpro: writing %s failed; stopping\n", qUtf8Printable(m_options.csvMetricsPath));
    finish(1);
}

void HeadlessSession::onDeadline()
{
    if (m_finished)
        return;
    std::fprintf(stderr, "orvexpro: the device delivered only %lld of %lld samples per channel in time; stopping\n",
                 static_cast<long long>(m_samples), static_cast<long long>(m_targetSamples));
    finish(1);
}

void HeadlessSession::finish(int exitCode)
{
    if (m_finished)
        return;
    m_finished = true;
    if (m_model->engine()->isRecording())
        m_model->engine()->stopRecord();
    m_model->engine()->stopDevice();
    m_csv.close();
    m_metrics.close();
    Q_EMIT finished(exitCode);
}
