#include "app/ui/SignalController.h"

#include "app/ui/ChannelListModel.h"
#include "core/CortexCore.h"
#include "settings/OrvexSettings.h"

#include <cmath>

namespace {
template<typename T>
bool isChoice(const QList<T>& choices, T value)
{
    for (T choice : choices) {
        if (std::abs(double(choice) - double(value)) < 1e-6)
            return true;
    }
    return false;
}
}

SignalController::SignalController(CortexCore* engine, OrvexSettings* settings, ChannelListModel* channels,
                                   QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_settings(settings)
    , m_channels(channels)
{
    connect(engine, &CortexCore::deviceStarted, this, &SignalController::resetLayout);
    connect(engine, &CortexCore::montageChanged, this, &SignalController::resetLayout);
    // Filters change through the window, the settings or an API client: all end here.
    connect(engine, &CortexCore::dataRecreated, this, &SignalController::filtersChanged);
    connect(engine, &CortexCore::newDataByChannel, this, &SignalController::onData);
    connect(engine, &CortexCore::newSignalQuality, channels, &ChannelListModel::setQuality);
    connect(engine, &CortexCore::deviceStopped, channels, [channels] { channels->setQuality({}); });
}

void SignalController::resetLayout()
{
    const QStringList names = m_engine->getCurrentMontageChannelNames();
    m_channels->setNames(names);
    m_traces.reset(names, m_engine->getCurrentDeviceFrequency(), KeptSeconds);
    Q_EMIT layoutChanged();
    Q_EMIT filtersChanged();
}

// Frozen traces keep their picture; the samples still reach the engine and the files.
void SignalController::onData(const QList<QList<float>>& block)
{
    if (m_frozen)
        return;
    if (block.size() != m_traces.channelCount())
        resetLayout();
    m_traces.append(block);
    Q_EMIT samplesArrived();
}

void SignalController::setTimeBase(double seconds)
{
    if (!isChoice(timeBases(), seconds) || seconds == m_timeBase)
        return;
    m_timeBase = seconds;
    Q_EMIT viewChanged();
}

QList<double> SignalController::timeBases()
{
    return { 1, 2, 5, 10, 20 };
}

void SignalController::setMicrovoltsPerDivision(double microvolts)
{
    if (!isChoice(scales(), microvolts) || microvolts == m_microvoltsPerDivision)
        return;
    m_microvoltsPerDivision = microvolts;
    Q_EMIT viewChanged();
}

QList<double> SignalController::scales()
{
    return { 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000 };
}

void SignalController::setAutoScale(bool automatic)
{
    if (automatic == m_autoScale)
        return;
    m_autoScale = automatic;
    Q_EMIT viewChanged();
}

void SignalController::setFrozen(bool frozen)
{
    if (frozen == m_frozen)
        return;
    m_frozen = frozen;
    Q_EMIT viewChanged();
}

double SignalController::hpf() const
{
    return m_engine->getHPF();
}

double SignalController::lpf() const
{
    return m_engine->getLPF();
}

int SignalController::notch() const
{
    return qRound(m_engine->getBSF());
}

// Through the settings, so the value is kept and reaches every engine node as an API change does.
void SignalController::setHpf(double hz)
{
    m_settings->setHPF(float(hz));
}

void SignalController::setLpf(double hz)
{
    m_settings->setLPF(float(hz));
}

void SignalController::setNotch(int hz)
{
    if (isChoice(notchChoices(), hz))
        m_settings->setBSF(float(hz));
}

QList<double> SignalController::hpfChoices()
{
    return { 0, 0.1, 0.5, 1, 2, 5, 10 };
}

QList<double> SignalController::lpfChoices()
{
    return { 0, 15, 30, 40, 50, 70, 100 };
}

QList<int> SignalController::notchChoices()
{
    return { 0, 50, 60 };
}

QString SignalController::scaleText(double microvolts)
{
    if (microvolts >= 1000)
        return QStringLiteral("%1 mV").arg(microvolts / 1000);
    return QStringLiteral("%1 µV").arg(microvolts);
}

QString SignalController::frequencyText(double hz)
{
    if (hz <= 0)
        return QStringLiteral("off");
    return QStringLiteral("%1 Hz").arg(hz);
}
