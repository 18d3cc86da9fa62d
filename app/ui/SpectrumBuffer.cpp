#include "app/ui/SpectrumBuffer.h"

#include "services/GlobalConsole.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr float Missing = std::numeric_limits<float>::quiet_NaN();
constexpr int MaxRows = 100000;
}

SpectrumBuffer::SpectrumBuffer(QObject* parent)
    : QObject(parent)
{
}

void SpectrumBuffer::setChannelNames(const QStringList& names)
{
    if (names == m_names)
        return;
    m_names = names;
    Q_EMIT layoutChanged();
}

int SpectrumBuffer::channelCount() const
{
    return m_spectra.isEmpty() ? int(m_names.size()) : int(m_spectra.size());
}

void SpectrumBuffer::setSpectrum(const QList<QList<float>>& amplitudes, double frequencyStep)
{
    const int bins = amplitudes.isEmpty() ? 0 : int(amplitudes.first().size());
    if (bins == 0 || !(frequencyStep > 0)) {
        GlobalConsole::writeLine(QStringLiteral("Spectrum buffer: ignored a spectrum of %1 bins, step %2 Hz")
                                     .arg(bins).arg(frequencyStep));
        return;
    }
    const bool reshaped = reshape(amplitudes.size(), bins, frequencyStep);
    for (qsizetype c = 0; c < amplitudes.size(); ++c) {
        const QList<float>& src = amplitudes[c];
        float* dst = m_spectra[c].data();
        const qsizetype n = std::min<qsizetype>(src.size(), bins);
        std::copy(src.constBegin(), src.constBegin() + n, dst);
        std::fill(dst + n, dst + bins, Missing);
    }
    m_held = true;
    pushSpectrogramRow();
    if (reshaped)
        Q_EMIT layoutChanged();
    Q_EMIT updated();
}

// Reallocates when the shape changes; returns whether it did.
bool SpectrumBuffer::reshape(qsizetype channels, int bins, double step)
{
    if (channels == m_spectra.size() && bins == m_bins && step == m_step)
        return false;
    m_spectra = QList<QList<float>>(channels, QList<float>(bins, Missing));
    m_bins = bins;
    m_step = step;
    m_ring.assign(size_t(m_rows) * size_t(bins), Missing);
    m_filled = 0;
    m_newest = -1;
    return true;
}

void SpectrumBuffer::pushSpectrogramRow()
{
    if (m_spectrogramChannel < 0 || m_spectrogramChannel >= m_spectra.size())
        return;
    m_newest = (m_newest + 1) % m_rows;
    const QList<float>& src = m_spectra[m_spectrogramChannel];
    std::copy(src.constBegin(), src.constEnd(), m_ring.begin() + qsizetype(m_newest) * m_bins);
    m_filled = std::min(m_filled + 1, m_rows);
}

void SpectrumBuffer::clear()
{
    m_spectra.clear();
    m_bins = 0;
    m_step = 0;
    m_held = false;
    m_filled = 0;
    m_newest = -1;
    Q_EMIT layoutChanged();
    Q_EMIT updated();
}

void SpectrumBuffer::setSpectrogramChannel(int channel)
{
    if (channel == m_spectrogramChannel)
        return;
    m_spectrogramChannel = channel;
    m_filled = 0;
    m_newest = -1;
    Q_EMIT spectrogramChannelChanged();
    Q_EMIT updated();
}

void SpectrumBuffer::setSpectrogramRows(int rows)
{
    if (rows == m_rows)
        return;
    if (rows < 1 || rows > MaxRows) {
        GlobalConsole::writeLine(QStringLiteral("Spectrum buffer: cannot keep %1 spectrogram rows").arg(rows));
        return;
    }
    m_rows = rows;
    m_ring.assign(size_t(m_rows) * size_t(m_bins), Missing);
    m_filled = 0;
    m_newest = -1;
    Q_EMIT layoutChanged();
}

const QList<float>& SpectrumBuffer::last(int channel) const
{
    static const QList<float> none;
    return m_held && channel >= 0 && channel < m_spectra.size() ? m_spectra[channel] : none;
}

const float* SpectrumBuffer::spectrogramRow(int age) const
{
    if (age < 0 || age >= m_filled)
        return nullptr;
    const int row = (m_newest - age + m_rows) % m_rows;
    return m_ring.data() + qsizetype(row) * m_bins;
}

double SpectrumBuffer::peakFrequency(int channel, double minHz, double maxHz) const
{
    const QList<float>& spectrum = last(channel);
    if (spectrum.isEmpty())
        return -1;
    const int from = std::max(0, int(std::ceil(minHz / m_step - 1e-9)));
    const int to = std::min(int(spectrum.size()) - 1, int(std::floor(maxHz / m_step + 1e-9)));
    int best = -1;
    for (int k = from; k <= to; ++k) {
        if (!std::isnan(spectrum[k]) && (best < 0 || spectrum[k] > spectrum[best]))
            best = k;
    }
    return best < 0 ? -1.0 : best * m_step;
}

double SpectrumBuffer::amplitudeAt(int channel, double hz) const
{
    const QList<float>& spectrum = last(channel);
    const double position = spectrum.isEmpty() ? -1 : hz / m_step;
    if (!(position >= 0) || position > spectrum.size() - 1)
        return -1;
    const int k = std::min(int(position), int(spectrum.size()) - 2);
    if (k < 0)
        return spectrum[0];
    const double t = position - k;
    return spectrum[k] + (spectrum[k + 1] - spectrum[k]) * t;
}
