#include "dsp/SpectrumAnalyzer.h"

#include "services/GlobalConsoleWriter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Bit-reversal permutation and twiddle factors of one transform size. The twiddles are
// make_w(k, n) for k < n / 2; a stage of length m uses every (n / m)-th of them, which is
// bit for bit make_w(j, m) since the angle −2π·k/n only differs from −2π·j/m by a power of
// two in numerator and denominator. Each stage's twiddles are also laid out contiguously,
// real and imaginary parts apart, so the butterfly loops run over plain float arrays that
// the compiler turns into vector instructions.
struct FftPlan
{
    std::vector<int> reversed;
    std::vector<float> stageRe; // stage of half-length h: entries h - 1 ... 2h - 2
    std::vector<float> stageIm;
};

int log2Exact(int n)
{
    if (n < 1 || n > SpectrumAnalyzer::MaxFftSize || (n & (n - 1)) != 0)
        return -1;
    int bits = 0;
    while ((1 << bits) < n)
        ++bits;
    return bits;
}

// One table per size and thread, built on first use.
const FftPlan& fftPlan(int bits)
{
    thread_local std::array<FftPlan, 32> plans;
    FftPlan& plan = plans[size_t(bits)];
    if (!plan.reversed.empty())
        return plan;
    const int n = 1 << bits;
    plan.reversed.resize(size_t(n));
    for (int i = 0; i < n; ++i) {
        int r = 0;
        for (int b = 0; b < bits; ++b)
            r |= ((i >> b) & 1) << (bits - 1 - b);
        plan.reversed[size_t(i)] = r;
    }
    std::vector<SpectrumAnalyzer::Complex> twiddles(size_t(n / 2));
    for (int k = 0; k < n / 2; ++k)
        SpectrumAnalyzer::make_w(k, n, twiddles[size_t(k)]);
    plan.stageRe.resize(size_t(std::max(1, n - 1)));
    plan.stageIm.resize(size_t(std::max(1, n - 1)));
    for (int half = 1, stride = n / 2; half < n; half *= 2, stride /= 2) {
        for (int j = 0; j < half; ++j) {
            plan.stageRe[size_t(half - 1 + j)] = twiddles[size_t(j * stride)].real();
            plan.stageIm[size_t(half - 1 + j)] = twiddles[size_t(j * stride)].imag();
        }
    }
    return plan;
}

// One group of butterflies. The halves never overlap, which the restrict qualifiers tell the
// compiler so that it can use vector instructions.
__attribute__((target_clones("avx2", "default"))) void butterflies(float* __restrict ar, float* __restrict ai, float* __restrict br, float* __restrict bi,
                        const float* __restrict wr, const float* __restrict wi, int half)
{
    for (int j = 0; j < half; ++j) {
        const float tr = wr[j] * br[j] - wi[j] * bi[j];
        const float ti = wr[j] * bi[j] + wi[j] * br[j];
        const float xr = ar[j], xi = ai[j];
        br[j] = xr - tr;
        bi[j] = xi - ti;
        ar[j] = xr + tr;
        ai[j] = xi + ti;
    }
}

// Iterative decimation-in-time stages on bit-reversed data held as separate real and
// imaginary arrays. The complex product is written out as plain multiply-adds.
void runStages(const FftPlan& plan, int n, float* re, float* im)
{
    // The first two stages have one and two butterflies per group: run them group after group
    // with their twiddles held in registers (same arithmetic as the general loop).
    int half = 1;
    if (n >= 4) {
        const float w0r = plan.stageRe[0], w0i = plan.stageIm[0];
        for (int start = 0; start < n; start += 2) {
            const float tr = w0r * re[start + 1] - w0i * im[start + 1];
            const float ti = w0r * im[start + 1] + w0i * re[start + 1];
            const float xr = re[start], xi = im[start];
            re[start + 1] = xr - tr;
            im[start + 1] = xi - ti;
            re[start] = xr + tr;
            im[start] = xi + ti;
        }
        const float v0r = plan.stageRe[1], v0i = plan.stageIm[1];
        const float v1r = plan.stageRe[2], v1i = plan.stageIm[2];
        for (int start = 0; start < n; start += 4) {
            for (int j = 0; j < 2; ++j) {
                const float wr = j == 0 ? v0r : v1r;
                const float wi = j == 0 ? v0i : v1i;
                const int a = start + j, b = a + 2;
                const float tr = wr * re[b] - wi * im[b];
                const float ti = wr * im[b] + wi * re[b];
                const float xr = re[a], xi = im[a];
                re[b] = xr - tr;
                im[b] = xi - ti;
                re[a] = xr + tr;
                im[a] = xi + ti;
            }
        }
        half = 4;
    }
    for (; half < n; half *= 2) {
        const float* wr = plan.stageRe.data() + half - 1;
        const float* wi = plan.stageIm.data() + half - 1;
        for (int start = 0; start < n; start += 2 * half)
            butterflies(re + start, im + start, re + start + half, im + start + half, wr, wi, half);
    }
}

// Sum in double with four running partial sums, so the additions do not wait on each other.
double sumOf(const float* values, int count)
{
    double partial[4] = { 0, 0, 0, 0 };
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        for (int k = 0; k < 4; ++k)
            partial[k] += values[i + k];
    }
    for (; i < count; ++i)
        partial[0] += values[i];
    return (partial[0] + partial[1]) + (partial[2] + partial[3]);
}

// Working arrays of the transforms of this thread.
struct FftScratch
{
    std::vector<float> re;
    std::vector<float> im;
    void resize(int n)
    {
        re.resize(size_t(n));
        im.resize(size_t(n));
    }
};

FftScratch& fftScratch()
{
    thread_local FftScratch scratch;
    return scratch;
}

// rate × seconds in samples, rounded half away from zero and kept within 0 ... MaxWindowSamples.
int roundedSamples(float rate, float seconds, const char* what)
{
    const float product = rate * seconds;
    if (!(product <= float(SpectrumAnalyzer::MaxWindowSamples))) {
        kxDebug() << QString("SpectrumAnalyzer: %1 of %2 samples cut to %3")
                         .arg(what).arg(double(product)).arg(SpectrumAnalyzer::MaxWindowSamples);
        return SpectrumAnalyzer::MaxWindowSamples;
    }
    return std::max(0, int(std::lround(product)));
}

} // namespace

SpectrumAnalyzer::SpectrumAnalyzer(QObject* parent) : QObject(parent) {}

int SpectrumAnalyzer::CalcSpectrumNFFT(float /*sampleRate*/, int samples)
{
    if (samples > MaxWindowSamples) {
        kxDebug() << QString("SpectrumAnalyzer: FFT for %1 samples cut to %2")
                         .arg(samples).arg(MaxFftSize);
        return MaxFftSize;
    }
    int nfft = 1;
    while (nfft < samples)
        nfft <<= 1;
    return nfft;
}

float SpectrumAnalyzer::CalcSpectrumFrequenciesStep(float sampleRate, int samples)
{
    return CalcSpectrumFrequenciesStepFromNFFT(sampleRate, CalcSpectrumNFFT(sampleRate, samples));
}

float SpectrumAnalyzer::CalcSpectrumFrequenciesStepFromNFFT(float sampleRate, int nfft)
{
    return nfft > 0 ? sampleRate / float(nfft) : 0.0f;
}

QList<float> SpectrumAnalyzer::CalcSpectrumFrequencies(float sampleRate, int samples)
{
    const int nfft = CalcSpectrumNFFT(sampleRate, samples);
    const float step = CalcSpectrumFrequenciesStepFromNFFT(sampleRate, nfft);
    QList<float> frequencies(nfft / 2 + 1);
    for (int k = 0; k < frequencies.size(); ++k)
        frequencies[k] = float(k) * step;
    return frequencies;
}

void SpectrumAnalyzer::ConvertDataForFFt(int nfft, const QList<float>& data, ComplexList& out)
{
    const qsizetype size = std::max<qsizetype>(nfft, data.size());
    out.resize(size);
    std::fill(out.begin(), out.end(), Complex(0.0f, 0.0f));
    Complex* points = out.data();
    for (qsizetype i = 0; i < data.size(); ++i)
        points[i] = Complex(data[i], 0.0f);
}

void SpectrumAnalyzer::make_w(int k, int n, Complex& w)
{
    if (n == 0 || k % n == 0) {
        w = Complex(1.0f, 0.0f);
        return;
    }
    const double x = -2.0 * M_PI * k / n;
    const float angle = float(x);
    w = Complex(std::cos(angle), std::sin(angle));
}

void SpectrumAnalyzer::fft(int n, const ComplexList& in, ComplexList& out)
{
    if (log2Exact(n) < 0 || in.size() < n) {
        kxDebug() << QString("SpectrumAnalyzer: cannot transform %1 points from %2 values")
                         .arg(n).arg(in.size());
        out.clear();
        return;
    }
    out.resize(n);
    Complex* destination = out.data(); // detaches first, so `in` may be the same list
    fft(n, in.constData(), destination);
}

bool SpectrumAnalyzer::fft(int n, const Complex* in, Complex* out)
{
    const int bits = log2Exact(n);
    if (bits < 0 || !in || !out) {
        kxDebug() << QString("SpectrumAnalyzer: cannot transform %1 points").arg(n);
        return false;
    }
    const FftPlan& plan = fftPlan(bits);
    FftScratch& scratch = fftScratch();
    scratch.resize(n);
    float* re = scratch.re.data();
    float* im = scratch.im.data();
    const int* reversed = plan.reversed.data();
    for (int i = 0; i < n; ++i) {
        re[i] = in[reversed[i]].real();
        im[i] = in[reversed[i]].imag();
    }
    runStages(plan, n, re, im);
    for (int i = 0; i < n; ++i)
        out[i] = Complex(re[i], im[i]);
    return true;
}

void SpectrumAnalyzer::setDataFrequency(float hz)
{
    m_sampleRate = std::max(0.0f, hz);
    refresh();
}

void SpectrumAnalyzer::setWindowSize(float seconds)
{
    m_windowSize = std::max(0.1f, seconds);
    refresh();
}

void SpectrumAnalyzer::setWindowStep(float seconds)
{
    m_windowStep = std::max(0.01f, seconds);
    refresh();
}

void SpectrumAnalyzer::setSmoothingWindowPercent(float percent)
{
    m_percent = std::min(50.0f, std::max(0.0f, percent));
    refresh();
}

void SpectrumAnalyzer::setChannelName(const QString& name)
{
    m_channelName = name;
    refresh();
}

void SpectrumAnalyzer::setOutputRhythmsValues(bool on)
{
    m_outputRhythmsValues = on;
    refresh();
}

float SpectrumAnalyzer::getFrequencyStep() const
{
    return CalcSpectrumFrequenciesStepFromNFFT(m_sampleRate, m_nfft);
}

void SpectrumAnalyzer::refresh()
{
    m_lastSpectrum.clear();
    m_windowSamples = roundedSamples(m_sampleRate, m_windowSize, "window");
    m_stepSamples = roundedSamples(m_sampleRate, m_windowStep, "step");
    m_smoothingLength = int(float(m_windowSamples) * m_percent);
    m_nfft = CalcSpectrumNFFT(m_sampleRate, m_windowSamples);
    m_frequencies = CalcSpectrumFrequencies(m_sampleRate, m_windowSamples);
    rebuildRhythmIndexes();
    m_windowChanged = true;
    m_taper.clear();
}

QPair<int, int> SpectrumAnalyzer::rhythmArrayIndexes(float from, float to) const
{
    // The bins are ascending, so the first bin at or above a frequency is its lower bound.
    const auto firstAtOrAbove = [this](float frequency) {
        const auto it = std::lower_bound(m_frequencies.cbegin(), m_frequencies.cend(), frequency);
        return it == m_frequencies.cend() ? 0 : int(it - m_frequencies.cbegin());
    };
    return {firstAtOrAbove(from), firstAtOrAbove(to)};
}

void SpectrumAnalyzer::indexRhythm(int index)
{
    const SpectrumRhythm& rhythm = m_rhythms[index];
    const QPair<int, int> indexes = rhythmArrayIndexes(rhythm.from, rhythm.to);
    m_rhythmIndexes[index] = indexes;
    m_globalStart = std::min(m_globalStart, indexes.first);
    m_globalEnd = std::max(m_globalEnd, indexes.second);
}

void SpectrumAnalyzer::rebuildRhythmIndexes()
{
    m_globalStart = int(m_frequencies.size());
    m_globalEnd = 0;
    m_rhythmIndexes.resize(m_rhythms.size());
    for (int i = 0; i < m_rhythms.size(); ++i)
        indexRhythm(i);
}

void SpectrumAnalyzer::addRhythm(const SpectrumRhythm& rhythm)
{
    m_rhythms.append(rhythm);
    m_rhythmIndexes.append({0, 0});
    indexRhythm(int(m_rhythms.size()) - 1);
}

void SpectrumAnalyzer::addRhythm(const QString& name, float from, float to)
{
    addRhythm(SpectrumRhythm(name, from, to));
}

int SpectrumAnalyzer::rhythmIndex(const QString& name) const
{
    for (int i = 0; i < m_rhythms.size(); ++i)
        if (m_rhythms[i].name == name)
            return i;
    return -1;
}

QList<float> SpectrumAnalyzer::addDataSample(const QList<float>& samples)
{
    return addDataSample(samples.constData(), int(samples.size()));
}

QList<float> SpectrumAnalyzer::addDataSample(const float* samples, int count)
{
    if (samples && count > 0)
        m_buffer.insert(m_buffer.end(), samples, samples + count);
    const int n = m_windowSamples;
    if (n < 1 || m_buffer.size() < size_t(n))
        return {};
    // One spectrum per call even when several windows are buffered.
    if (n > 2)
        computeSpectrum(m_buffer.data(), n);
    Q_EMIT spectrumCalculated(m_lastSpectrum);
    const size_t drop = std::min(m_buffer.size(), size_t(std::max(0, m_stepSamples)));
    m_buffer.erase(m_buffer.begin(), m_buffer.begin() + std::ptrdiff_t(drop));
    return m_lastSpectrum;
}

QList<float> SpectrumAnalyzer::calculateSpectrum(const QList<float>& block)
{
    return computeSpectrum(block.constData(), int(block.size()));
}

void SpectrumAnalyzer::buildTaper(int length, int n)
{
    m_windowChanged = false;
    m_taper.resize(length);
    double sum = 0;
    for (int i = 0; i < length; ++i) {
        m_taper[i] = 0.5 * (1.0 - std::cos(2.0 * M_PI * i / length));
        sum += m_taper[i];
    }
    // Restores the amplitude that the taper takes away from a steady sine.
    m_taperCorrection = n / ((n - length) + sum);
}

void SpectrumAnalyzer::prepareBlock(const float* block, int n)
{
    m_block.resize(n);
    float* x = m_block.data();
    const double mean = sumOf(block, n) / n;
    for (int i = 0; i < n; ++i)
        x[i] = float(block[i] - mean);

    const double p = std::min(0.5, std::max(0.0, double(m_percent) / 100.0));
    const int length = int(2.0 * n * p);
    if (length < 1 || length > n)
        return;
    if (m_taper.isEmpty() || m_windowChanged || m_taper.size() != length)
        buildTaper(length, n);
    const double* w = m_taper.constData();
    const int head = length / 2;
    for (int i = 0; i < head; ++i)
        x[i] = float(x[i] * w[i]);
    float* tail = x + head + (n - length);
    for (int i = 0; i < length - head; ++i)
        tail[i] = float(tail[i] * w[head + i]);
    for (int i = 0; i < n; ++i)
        x[i] = float(x[i] * m_taperCorrection);
}

QList<float> SpectrumAnalyzer::computeSpectrum(const float* block, int n)
{
    m_lastSpectrum.clear();
    if (n != m_windowSamples || n < 1 || !block)
        return m_lastSpectrum;
    prepareBlock(block, n);

    // The zero-padded real block goes straight into the transform's bit-reversed working
    // arrays: the same values as converting it to complex points and transforming them.
    const int size = std::max(m_nfft, n);
    const int bits = log2Exact(size);
    if (bits < 0)
        return m_lastSpectrum;
    const FftPlan& plan = fftPlan(bits);
    FftScratch& scratch = fftScratch();
    scratch.resize(size);
    float* re = scratch.re.data();
    float* im = scratch.im.data();
    const float* x = m_block.constData();
    const int* reversed = plan.reversed.data();
    for (int i = 0; i < size; ++i) {
        const int from = reversed[i];
        re[i] = from < n ? x[from] : 0.0f;
        im[i] = 0.0f;
    }
    runStages(plan, size, re, im);

    const qsizetype bins = std::min<qsizetype>(m_frequencies.size(), size);
    m_lastSpectrum.resize(bins);
    float* amplitudes = m_lastSpectrum.data();
    const float scale = 2.0f / float(n);
    for (qsizetype k = 0; k < bins; ++k)
        amplitudes[k] = scale * std::sqrt(re[k] * re[k] + im[k] * im[k]);
    m_lastRhythms = calculateRhythms(m_lastSpectrum);
    Q_EMIT spectrumRhythmsCalculated(m_lastRhythms);
    return m_lastSpectrum;
}

QMap<QString, float> SpectrumAnalyzer::calculateRhythms(const QList<float>& spectrum)
{
    const int m = int(spectrum.size());
    m_lastRhythmsValues.clear();
    if (m_globalStart < 0 || m_globalStart >= m || m_globalEnd < 0 || m_globalEnd >= m)
        return {};
    const float total = float(sumOf(spectrum.constData(), m));
    if (m_outputRhythmsValues)
        m_lastRhythmsValues.insert(QStringLiteral("sum"), spectrum);
    if (!(total > 0))
        return {};
    QMap<QString, float> result;
    for (int r = 0; r < m_rhythms.size(); ++r) {
        const int first = m_rhythmIndexes[r].first;
        const int end = m_rhythmIndexes[r].second;
        if (first < 0 || first >= m || end < 0 || end >= m || first >= end)
            continue;
        double band = 0;
        for (int i = first; i < end; ++i)
            band += spectrum[i];
        result.insert(m_rhythms[r].name, float(band * 100.0 / total));
        if (m_outputRhythmsValues)
            m_lastRhythmsValues.insert(m_rhythms[r].name, spectrum.mid(first, end - first));
    }
    m_lastTotal = total;
    result.insert(QStringLiteral("sum"), total);
    m_lastRhythms = result;
    return result;
}

float SpectrumAnalyzer::calculateCustomRhythm(float from, float to)
{
    if (m_lastSpectrum.isEmpty())
        return 0;
    const qsizetype bins = m_lastSpectrum.size();
    const QPair<int, int> indexes = rhythmArrayIndexes(from, to);
    double band = 0;
    for (qsizetype i = indexes.first; i < std::min<qsizetype>(indexes.second, bins); ++i)
        band += m_lastSpectrum[i];
    double total = m_lastTotal;
    if (total == 0) {
        // Without a total from calculateRhythms an integer mean stands in, by design: a running
        // sum truncated at every step, integer-divided by the bin count.
        for (float value : m_lastSpectrum)
            total = std::trunc(total + value);
        total = std::trunc(total / double(bins));
    }
    return total == 0 ? 0.0f : float(band / total);
}

float SpectrumAnalyzer::calcWeightedAverageFrequency(const QString& rhythm) const
{
    const int r = rhythmIndex(rhythm);
    if (r < 0)
        return 0;
    const qsizetype end = std::min({qsizetype(m_rhythmIndexes[r].second), m_lastSpectrum.size(),
                                    m_frequencies.size()});
    double sum = 0, weighted = 0;
    for (qsizetype i = std::max(0, m_rhythmIndexes[r].first); i < end; ++i) {
        sum += m_lastSpectrum[i];
        weighted += double(m_lastSpectrum[i]) * m_frequencies[i];
    }
    return sum > 0 ? float(weighted / sum) : 0.0f;
}

float SpectrumAnalyzer::calcMaximumDominantFrequency(const QString& rhythm, double minShare) const
{
    const int r = rhythmIndex(rhythm);
    if (r < 0)
        return 0;
    const qsizetype end = std::min({qsizetype(m_rhythmIndexes[r].second), m_lastSpectrum.size(),
                                    m_frequencies.size()});
    double sum = 0;
    qsizetype peak = -1;
    for (qsizetype i = std::max(0, m_rhythmIndexes[r].first); i < end; ++i) {
        sum += m_lastSpectrum[i];
        if (peak < 0 || m_lastSpectrum[i] > m_lastSpectrum[peak])
            peak = i;
    }
    if (peak < 0 || !(sum > 0) || m_lastSpectrum[peak] < minShare * sum)
        return 0;
    return m_frequencies[peak];
}
