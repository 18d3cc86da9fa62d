#include "app/ui/SpectrumController.h"

#include "app/ui/ChannelListModel.h"
#include "core/CortexCore.h"

namespace {
// Below this the taper's leakage and the high-pass filter dominate; not a peak a person means.
constexpr double LowestPeakHz = 0.5;
}

SpectrumController::SpectrumController(CortexCore* engine, ChannelListModel* channels, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_channels(channels)
{
    // The engine marks itself started only after announcing it: read its state a turn later.
    connect(engine, &CortexCore::deviceStarted, this, &SpectrumController::resetLayout, Qt::QueuedConnection);
    connect(engine, &CortexCore::montageChanged, this, &SpectrumController::resetLayout);
    connect(engine, &CortexCore::newCortexDataResult, this, &SpectrumController::onResult);
    connect(channels, &ChannelListModel::spectrumSelectionChanged, this, &SpectrumController::spectrumUpdated);
}

void SpectrumController::resetLayout()
{
    const QStringList names = m_engine->getCurrentMontageChannelNames();
    m_spectra.setChannelNames(names);
    m_spectra.clear();
    m_rhythms.setNames(names);
    m_hasSpectrum = false;
    const QList<double> choices = maxFrequencies();
    if (!choices.isEmpty() && !choices.contains(m_maxFrequency))
        m_maxFrequency = choices.contains(40.0) ? 40.0 : choices.last();
    Q_EMIT layoutChanged();
    Q_EMIT viewChanged();
    Q_EMIT spectrumUpdated();
}

void SpectrumController::onResult(const CortexDataResult& result)
{
    if (!result.hasSpectrum)
        return;
    m_spectra.setSpectrum(result.spectrum, m_engine->getSpectrumFrequencyStep());
    m_rhythms.setRhythms(m_engine->getLastStandartRhythms());
    m_hasSpectrum = true;
    Q_EMIT spectrumUpdated();
}

void SpectrumController::setLogScale(bool log)
{
    if (log == m_logScale)
        return;
    m_logScale = log;
    Q_EMIT viewChanged();
}

void SpectrumController::setMaxFrequency(double hz)
{
    if (hz == m_maxFrequency || !maxFrequencies().contains(hz))
        return;
    m_maxFrequency = hz;
    Q_EMIT viewChanged();
}

QList<double> SpectrumController::maxFrequencies() const
{
    const double nyquist = m_engine->isDeviceStarted() ? m_engine->getCurrentDeviceFrequency() / 2 : 500;
    QList<double> choices;
    for (double hz : { 20.0, 30.0, 40.0, 50.0, 70.0, 100.0, 200.0, 500.0 }) {
        if (hz <= nyquist)
            choices.append(hz);
    }
    return choices;
}

void SpectrumController::setSpectrogramChannel(int channel)
{
    if (channel == m_spectra.spectrogramChannel() || channel < 0 || channel >= m_spectra.channelCount())
        return;
    m_spectra.setSpectrogramChannel(channel);
    Q_EMIT viewChanged();
}

double SpectrumController::peakFrequency() const
{
    const QList<int> selected = m_channels->spectrumChannels();
    if (!m_hasSpectrum || selected.isEmpty())
        return -1;
    return m_spectra.peakFrequency(selected.first(), LowestPeakHz, m_maxFrequency);
}

QString SpectrumController::peakFrequencyText() const
{
    const double hz = peakFrequency();
    return hz < 0 ? QStringLiteral("—") : QStringLiteral("%1 Hz").arg(hz, 0, 'f', 1);
}
