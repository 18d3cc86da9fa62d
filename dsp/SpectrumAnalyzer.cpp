#include "dsp/SpectrumAnalyzer.h"

#include "services/GlobalConsoleWriter.h"

#include <QMetaMethod>

#include <algorithm>
#include <array>
#include <cmath>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

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

// Sum in double with sixteen running partial sums, so the additions do not wait on each other
// and run as vector instructions.
__attribute__((target_clones("avx2", "default"))) double sumOf(const float* values, int count)
{
    constexpr int Lanes = 16;
    double partial[Lanes] = {};
    int i = 0;
    for (; i + Lanes <= count; i += Lanes) {
        for (int k = 0; k < Lanes; ++k)
            partial[k] += values[i + k];
    }
    for (; i < count; ++i)
        partial[0] += values[i];
    for (int width = Lanes / 2; width > 0; width /= 2) {
        for (int k = 0; k < width; ++k)
            partial[k] += partial[k + width];
    }
    return partial[0];
}

// Sum of values[first ... end − 1] in double, four running sums: a band's sum.
double bandSum(const float* values, int first, int end)
{
    double partial[4] = { 0, 0, 0, 0 };
    int i = first;
    for (; i + 4 <= end; i += 4) {
        for (int k = 0; k < 4; ++k)
            partial[k] += values[i + k];
    }
    for (; i < end; ++i)
        partial[0] += values[i];
    return (partial[0] + partial[1]) + (partial[2] + partial[3]);
}

// out = (block − mean) × gain, sample by sample.
__attribute__((target_clones("avx2", "default"))) void centreAndTaper(const float* __restrict block, float mean,
                                                                      const float* __restrict gains,
                                                                      float* __restrict out, int count)
{
    for (int i = 0; i < count; ++i)
        out[i] = (block[i] - mean) * gains[i];
}

// Twiddles of the step that turns the transform of n/2 packed sample pairs into the spectrum of
// n real samples: make_w(k, n) for k = 0 ... n/4, real and imaginary parts apart.
struct RealSplitPlan
{
    std::vector<float> re;
    std::vector<float> im;
};

const RealSplitPlan& realSplitPlan(int bits)
{
    thread_local std::array<RealSplitPlan, 32> plans;
    RealSplitPlan& plan = plans[size_t(bits)];
    if (!plan.re.empty())
        return plan;
    const int n = 1 << bits;
    plan.re.resize(size_t(n / 4 + 1));
    plan.im.resize(size_t(n / 4 + 1));
    for (int k = 0; k <= n / 4; ++k) {
        SpectrumAnalyzer::Complex w;
        SpectrumAnalyzer::make_w(k, n, w);
        plan.re[size_t(k)] = w.real();
        plan.im[size_t(k)] = w.imag();
    }
    return plan;
}

// Z = re + i·im is the transform of the `half` points x[2m] + i·x[2m + 1]. With P = Z[k],
// Q = conj Z[half − k], E = P + Q and O = −i·(P − Q), twice the real signal's transform is
// 2X[k] = E + W^k·O and 2X[half − k] = conj(E − W^k·O), W^k = make_w(k, 2·half); DC and
// Nyquist come from Z[0] alone. Writes |2X[k]|² for k = 0 ... half.
__attribute__((target_clones("avx2", "default"))) void splitSquares(const float* __restrict re,
                                                                    const float* __restrict im,
                                                                    const float* __restrict wr,
                                                                    const float* __restrict wi, int half,
                                                                    float* __restrict out)
{
    const float dc = 2.0f * (re[0] + im[0]);
    const float nyquist = 2.0f * (re[0] - im[0]);
    out[0] = dc * dc;
    out[half] = nyquist * nyquist;
    const int middle = half / 2;
    for (int k = 1; k < middle; ++k) {
        const int j = half - k;
        const float er = re[k] + re[j], ei = im[k] - im[j];
        const float dr = re[k] - re[j], di = im[k] + im[j];
        const float tr = wr[k] * di + wi[k] * dr;
        const float ti = wi[k] * di - wr[k] * dr;
        const float ar = er + tr, ai = ei + ti;
        const float br = er - tr, bi = ei - ti;
        out[k] = ar * ar + ai * ai;
        out[j] = br * br + bi * bi;
    }
    if (middle > 0) {
        // Z[middle] pairs with itself: E = 2 Re Z, O = 2 Im Z.
        const float er = 2.0f * re[middle], di = 2.0f * im[middle];
        const float ar = er + wr[middle] * di, ai = wi[middle] * di;
        out[middle] = ar * ar + ai * ai;
    }
}

// values = scale × √values.
void scaledRoots(float* values, int count, float scale)
{
    int i = 0;
#if defined(__SSE2__)
    const __m128 factor = _mm_set1_ps(scale);
    for (; i + 4 <= count; i += 4)
        _mm_storeu_ps(values + i, _mm_mul_ps(factor, _mm_sqrt_ps(_mm_loadu_ps(values + i))));
#endif
    for (; i < count; ++i)
        values[i] = scale * std::sqrt(values[i]);
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
    getLastRhythms(); // the pending map is built from the rhythms it was measured with
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
    if (samples && count > 0) {
        // Consumed samples are dropped only once they outnumber the pending ones, so the
        // buffer is moved rarely instead of on every step.
        const size_t pending = m_buffer.size() - m_bufferStart;
        if (m_bufferStart > 0 && m_bufferStart >= pending) {
            m_buffer.erase(m_buffer.begin(), m_buffer.begin() + std::ptrdiff_t(m_bufferStart));
            m_bufferStart = 0;
        }
        m_buffer.insert(m_buffer.end(), samples, samples + count);
    }
    const int n = m_windowSamples;
    const size_t pending = m_buffer.size() - m_bufferStart;
    if (n < 1 || pending < size_t(n))
        return {};
    // One spectrum per call even when several windows are buffered.
    if (n > 2)
        computeSpectrum(m_buffer.data() + m_bufferStart, n);
    Q_EMIT spectrumCalculated(m_lastSpectrum);
    m_bufferStart += std::min(pending, size_t(std::max(0, m_stepSamples)));
    return m_lastSpectrum;
}

QList<float> SpectrumAnalyzer::calculateSpectrum(const QList<float>& block)
{
    return computeSpectrum(block.constData(), int(block.size()));
}

void SpectrumAnalyzer::buildTaper(int length, int n)
{
    m_taper.resize(length);
    double sum = 0;
    for (int i = 0; i < length; ++i) {
        m_taper[i] = 0.5 * (1.0 - std::cos(2.0 * M_PI * i / length));
        sum += m_taper[i];
    }
    // Restores the amplitude that the taper takes away from a steady sine.
    m_taperCorrection = n / ((n - length) + sum);
}

// Taper and amplitude correction folded into one factor per sample: 1 without a taper.
void SpectrumAnalyzer::buildGains(int n)
{
    m_windowChanged = false;
    m_gains.assign(size_t(n), 1.0f);
    const double p = std::min(0.5, std::max(0.0, double(m_percent) / 100.0));
    const int length = int(2.0 * n * p);
    if (length < 1 || length > n)
        return;
    buildTaper(length, n);
    const double* w = m_taper.constData();
    std::fill(m_gains.begin(), m_gains.end(), float(m_taperCorrection));
    const int head = length / 2;
    for (int i = 0; i < head; ++i)
        m_gains[size_t(i)] = float(w[i] * m_taperCorrection);
    const int tail = head + (n - length);
    for (int i = 0; i < length - head; ++i)
        m_gains[size_t(tail + i)] = float(w[head + i] * m_taperCorrection);
}

// The block, mean removed and tapered, into the first n of `size` work values; the rest stay 0.
void SpectrumAnalyzer::prepareBlock(const float* block, int n, int size)
{
    if (m_windowChanged || m_gains.size() != size_t(n) || m_work.size() != size_t(size)) {
        buildGains(n);
        m_work.assign(size_t(size), 0.0f);
    }
    const double mean = sumOf(block, n) / n;
    centreAndTaper(block, float(mean), m_gains.data(), m_work.data(), n);
}

// A real block's spectrum from half as many complex points: the samples are packed in pairs
// into one complex transform of size / 2 points (the same stages and tables as `fft`), and
// splitSquares untangles the two halves.
void SpectrumAnalyzer::transformReal(int size, int bins)
{
    const int bits = log2Exact(size);
    const int half = size / 2;
    const FftPlan& plan = fftPlan(bits - 1);
    const RealSplitPlan& split = realSplitPlan(bits);
    FftScratch& scratch = fftScratch();
    scratch.resize(half);
    float* re = scratch.re.data();
    float* im = scratch.im.data();
    const float* x = m_work.data();
    const int* reversed = plan.reversed.data();
    for (int i = 0; i < half; ++i) {
        const int from = 2 * reversed[i];
        re[i] = x[from];
        im[i] = x[from + 1];
    }
    runStages(plan, half, re, im);
    // Exactly the bins: a plain resize would round the allocation up to nearly twice that,
    // and callers keep many spectra.
    m_lastSpectrum.reserve(bins);
    m_lastSpectrum.resize(bins);
    float* amplitudes = m_lastSpectrum.data();
    splitSquares(re, im, split.re.data(), split.im.data(), half, amplitudes);
    // The squares are of twice the transform: 2|X|/n = |2X|/n.
    scaledRoots(amplitudes, bins, 1.0f / float(m_windowSamples));
}

// The zero-padded block as complex points through the transform's bit-reversed working arrays:
// the same values as converting it with ConvertDataForFFt and calling fft.
void SpectrumAnalyzer::transformComplex(int size, int bins)
{
    const FftPlan& plan = fftPlan(log2Exact(size));
    FftScratch& scratch = fftScratch();
    scratch.resize(size);
    float* re = scratch.re.data();
    float* im = scratch.im.data();
    const float* x = m_work.data();
    const int* reversed = plan.reversed.data();
    for (int i = 0; i < size; ++i) {
        re[i] = x[reversed[i]];
        im[i] = 0.0f;
    }
    runStages(plan, size, re, im);
    m_lastSpectrum.reserve(bins);
    m_lastSpectrum.resize(bins);
    float* amplitudes = m_lastSpectrum.data();
    const float scale = 2.0f / float(m_windowSamples);
    for (int k = 0; k < bins; ++k)
        amplitudes[k] = scale * std::sqrt(re[k] * re[k] + im[k] * im[k]);
}

QList<float> SpectrumAnalyzer::computeSpectrum(const float* block, int n)
{
    // A spectrum still shared with a caller is let go rather than cleared: clearing would
    // allocate a copy-sized buffer just to replace it.
    if (m_lastSpectrum.isDetached())
        m_lastSpectrum.clear();
    else
        m_lastSpectrum = QList<float>();
    if (n != m_windowSamples || n < 1 || !block)
        return m_lastSpectrum;
    const int size = std::max(m_nfft, n);
    if (log2Exact(size) < 0)
        return m_lastSpectrum;
    prepareBlock(block, n, size);
    const int bins = int(std::min<qsizetype>(m_frequencies.size(), size));
    if (size >= 4 && bins == size / 2 + 1)
        transformReal(size, bins);
    else
        transformComplex(size, bins);

    m_lastSharesValid = measureRhythms(m_lastSpectrum);
    m_lastRhythmsStale = true;
    // The map costs more than the spectrum's bookkeeping: built only for listeners.
    static const QMetaMethod rhythmsSignal = QMetaMethod::fromSignal(&SpectrumAnalyzer::spectrumRhythmsCalculated);
    if (isSignalConnected(rhythmsSignal))
        Q_EMIT spectrumRhythmsCalculated(getLastRhythms());
    return m_lastSpectrum;
}

// Shares of the rhythms in `spectrum` into m_lastShares and its total into m_lastTotal; false,
// with both left as they were, when there are none.
bool SpectrumAnalyzer::measureRhythms(const QList<float>& spectrum)
{
    const int m = int(spectrum.size());
    m_lastRhythmsValues.clear();
    if (m_globalStart < 0 || m_globalStart >= m || m_globalEnd < 0 || m_globalEnd >= m)
        return false;
    const float* bins = spectrum.constData();
    const float total = float(sumOf(bins, m));
    if (m_outputRhythmsValues)
        m_lastRhythmsValues.insert(QStringLiteral("sum"), spectrum);
    if (!(total > 0))
        return false;
    m_lastShares.assign(size_t(m_rhythms.size()), -1.0f);
    m_lastSharePresent.assign(size_t(m_rhythms.size()), false);
    for (int r = 0; r < m_rhythms.size(); ++r) {
        const int first = m_rhythmIndexes[r].first;
        const int end = m_rhythmIndexes[r].second;
        if (first < 0 || first >= m || end < 0 || end >= m || first >= end)
            continue;
        m_lastShares[size_t(r)] = float(bandSum(bins, first, end) * 100.0 / total);
        m_lastSharePresent[size_t(r)] = true;
        if (m_outputRhythmsValues)
            m_lastRhythmsValues.insert(m_rhythms[r].name, spectrum.mid(first, end - first));
    }
    m_lastTotal = total;
    m_lastSharesTotal = total;
    return true;
}

QMap<QString, float> SpectrumAnalyzer::calculateRhythms(const QList<float>& spectrum)
{
    if (!measureRhythms(spectrum))
        return {};
    m_lastSharesValid = true;
    m_lastRhythmsStale = true;
    return getLastRhythms();
}

QMap<QString, float> SpectrumAnalyzer::getLastRhythms() const
{
    if (m_lastRhythmsStale) {
        m_lastRhythmsStale = false;
        m_lastRhythms.clear();
        if (m_lastSharesValid) {
            for (size_t r = 0; r < m_lastShares.size(); ++r) {
                if (m_lastSharePresent[r])
                    m_lastRhythms.insert(m_rhythms[qsizetype(r)].name, m_lastShares[r]);
            }
            m_lastRhythms.insert(QStringLiteral("sum"), m_lastSharesTotal);
        }
    }
    return m_lastRhythms;
}

float SpectrumAnalyzer::getLastRhythmShare(int index) const
{
    if (!m_lastSharesValid || index < 0 || size_t(index) >= m_lastShares.size() || !m_lastSharePresent[size_t(index)])
        return -1.0f;
    return m_lastShares[size_t(index)];
}

float SpectrumAnalyzer::calculateCustomRhythm(float from, float to)
{
    if (m_lastSpectrum.isEmpty())
        return 0;
    return calculateCustomRhythm(rhythmArrayIndexes(from, to));
}

float SpectrumAnalyzer::calculateCustomRhythm(const QPair<int, int>& indexes)
{
    if (m_lastSpectrum.isEmpty())
        return 0;
    const float* bins = m_lastSpectrum.constData();
    const int count = int(m_lastSpectrum.size());
    const double band = bandSum(bins, std::max(0, indexes.first), std::min(indexes.second, count));
    double total = m_lastTotal;
    if (total == 0) {
        // Without a total from calculateRhythms an integer mean stands in, by design: a running
        // sum truncated at every step, integer-divided by the bin count.
        for (int i = 0; i < count; ++i)
            total = std::trunc(total + bins[i]);
        total = std::trunc(total / double(count));
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
