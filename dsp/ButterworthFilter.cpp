#include "dsp/ButterworthFilter.h"

#include "dsp/IIRFilter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double Pi = 3.141592653589793;

// out = p * q for polynomials in z^-1 (lengths np, nq; out holds np + nq - 1 <= 5 entries).
void polyMultiply(const double* p, int np, const double* q, int nq, double* out)
{
    double r[5] = {0, 0, 0, 0, 0};
    for (int i = 0; i < np; ++i)
        for (int j = 0; j < nq; ++j)
            r[i + j] += p[i] * q[j];
    std::copy(r, r + np + nq - 1, out);
}

// Substitutes z^-1 -> N(z^-1) / D(z^-1) into c (degree p) and clears the denominator:
// out = sum_i c[i] * N^i * D^(p-i).
void substitute(const double* c, int p, const double* n, const double* d, int q, double* out)
{
    double sum[5] = {0, 0, 0, 0, 0};
    for (int i = 0; i <= p; ++i) {
        double term[5] = {1, 0, 0, 0, 0};
        int length = 1;
        for (int j = 0; j < p; ++j) {
            polyMultiply(term, length, j < i ? n : d, q + 1, term);
            length += q;
        }
        for (int k = 0; k < length; ++k)
            sum[k] += c[i] * term[k];
    }
    std::copy(sum, sum + p * q + 1, out);
}

bool allFinite(const QList<QList<float>>& sections, float gain)
{
    if (!std::isfinite(gain))
        return false;
    for (const QList<float>& section : sections)
        for (float value : section)
            if (!std::isfinite(value))
                return false;
    return true;
}

} // namespace

ButterworthFilter::ButterworthFilter(FilterTypeEnum type, int order, float sampleRate,
                                     float frequency1, float frequency2, QObject* parent)
    : AbstractFilter(IIR, QStringLiteral("ButterworthFilter"), parent), m_mode(type)
{
    const float c1 = std::min(sampleRate / 2, std::max(0.0f, frequency1));
    const float c2 = std::min(sampleRate / 2, std::max(0.0f, frequency2));

    // The band types are series connections; the band-stop is deliberately low-pass(c1) then
    // high-pass(c2), which only passes between c2 and c1 when c2 < c1.
    switch (type) {
    case LowPass:
        m_second = makeCascade(LowPass, order, c1, sampleRate);
        break;
    case HighPass:
        m_first = makeCascade(HighPass, order, c2, sampleRate);
        break;
    case BandPass:
        m_second = makeCascade(HighPass, order, c1, sampleRate);
        m_first = makeCascade(LowPass, order, c2, sampleRate);
        break;
    case BandStop:
        m_second = makeCascade(LowPass, order, c1, sampleRate);
        m_first = makeCascade(HighPass, order, c2, sampleRate);
        break;
    }
    m_hasFirst = m_first != nullptr;
    m_hasSecond = m_second != nullptr;
}

ButterworthFilter::~ButterworthFilter()
{
    delete m_first;
    delete m_second;
}

IIRFilter* ButterworthFilter::makeCascade(FilterTypeEnum type, int order, float frequency,
                                          float sampleRate)
{
    QList<QList<float>> sections;
    float gain = 1.0f;
    Butter(&sections, &gain, type, order, frequency, frequency, sampleRate);
    // A degenerate design (high-pass at exactly 0 Hz, no valid sample rate) gives non-finite
    // coefficients; leaving the cascade out makes that stage pass its input through.
    if (!allFinite(sections, gain))
        return nullptr;
    return new IIRFilter(&sections, gain);
}

void ButterworthFilter::Butter(QList<QList<float>>* sections, float* gain, FilterTypeEnum type,
                               int order, float frequency1, float /*frequency2*/, float sampleRate)
{
    if (!sections || !gain)
        return;
    *gain = 1.0f;
    if (type != LowPass && type != HighPass)
        return;

    // Odd orders round up to the next even one; capping first keeps INT_MAX from overflowing.
    const int capped = std::min(order, MaxOrder);
    const int n = std::min(capped + capped % 2, MaxOrder);
    const int m = std::max(0, n / 2);
    sections->clear();
    for (int k = 0; k < m; ++k)
        sections->append(QList<float>{1, 0, 0, 1, 0, 0});

    // The high-pass prototype sits at fs - f1 (not the Nyquist mirror); FilterTransform moves
    // the response back to the requested cut-off.
    const float fp = type == LowPass ? frequency1 : sampleRate - frequency1;
    const float thetaP = fp / sampleRate;
    const float theta = frequency1 / sampleRate;
    const float w = float(std::tan(Pi * double(thetaP)));

    double b[MaxOrder / 2][5] = {};
    double a[MaxOrder / 2][5] = {};
    for (int k = 0; k < m; ++k) {
        const double x = (2 * k + 1) * Pi / (2.0 * n);
        const float re = float(-double(w) * std::cos(x));
        const float im = float(double(w) * std::sin(x));
        // This denominator is the program's own pole mapping, kept on purpose; the product
        // (1 - re) * re is formed in float.
        const float product = (1.0f - re) * re;
        const double d = 1.0 - double(product) + double(im) * double(im);
        const float reZ = float((1.0 - double(re) * double(re) - double(im) * double(im)) / d);
        const float imZ = float(2.0 * double(im) / d);

        a[k][0] = 1.0;
        a[k][1] = -2.0 * double(reZ);
        a[k][2] = double(reZ) * double(reZ) + double(imZ) * double(imZ);
        const double s = a[k][0] + a[k][1] + a[k][2];
        b[k][0] = s / 4;
        b[k][1] = s / 2;
        b[k][2] = s / 4;
    }

    if (type == HighPass)
        FilterTransform(b, a, m, 3, HighPass, thetaP, theta, theta);

    for (int k = 0; k < m; ++k) {
        const double b0 = b[k][0];
        *gain *= b0;
        QList<float>& section = (*sections)[k];
        section[0] = float(b[k][0] / b0);
        section[1] = float(b[k][1] / b0);
        section[2] = float(b[k][2] / b0);
        section[3] = float(a[k][0]);
        section[4] = float(a[k][1]);
        section[5] = float(a[k][2]);
    }
}

int ButterworthFilter::FilterTransform(double (*b)[5], double (*a)[5], int sectionCount,
                                       int coefCount, FilterTypeEnum type, double thetaP,
                                       double theta1, double theta2)
{
    // The map z^-1 -> N(z^-1) / D(z^-1), first order for low/high-pass, second for the bands.
    double n[3] = {0, 0, 0};
    double d[3] = {0, 0, 0};
    int q = 1;
    const double x1 = Pi * (thetaP + theta1);
    const double x2 = Pi * (thetaP - theta1);
    switch (type) {
    case LowPass: {
        const double alpha = std::sin(x2) / std::sin(x1);
        n[0] = -alpha; n[1] = 1;
        d[0] = 1; d[1] = -alpha;
        break;
    }
    case HighPass: {
        const double alpha = -std::cos(x1) / std::cos(x2);
        n[0] = -alpha; n[1] = -1;
        d[0] = 1; d[1] = alpha;
        break;
    }
    case BandPass: {
        const double k = std::tan(Pi * thetaP) / std::tan(Pi * (theta2 - theta1));
        const double c = std::cos(Pi * (theta1 + theta2)) / std::cos(Pi * (theta2 - theta1));
        const double a1 = -2 * c * k / (k + 1);
        const double a2 = (k - 1) / (k + 1);
        n[0] = -a2; n[1] = -a1; n[2] = -1;
        d[0] = 1; d[1] = a1; d[2] = a2;
        q = 2;
        break;
    }
    case BandStop: {
        const double k = std::tan(Pi * thetaP) * std::tan(Pi * (theta2 - theta1));
        const double c = std::cos(Pi * (theta1 + theta2)) / std::cos(Pi * (theta2 - theta1));
        const double a1 = -2 * c / (1 + k);
        const double a2 = (1 - k) / (1 + k);
        n[0] = a2; n[1] = a1; n[2] = 1;
        d[0] = 1; d[1] = a1; d[2] = a2;
        q = 2;
        break;
    }
    default:
        return -1;
    }

    const int p = coefCount - 1;
    if (p < 0 || p * q + 1 > 5)
        return -1;
    for (int s = 0; s < sectionCount; ++s) {
        substitute(b[s], p, n, d, q, b[s]);
        substitute(a[s], p, n, d, q, a[s]);
        const double a0 = a[s][0];
        for (int i = 0; i <= p * q; ++i) {
            b[s][i] /= a0;
            a[s][i] /= a0;
        }
    }
    return p * q + 1;
}

int ButterworthFilter::FilterTransform(QList<QList<double>>* b, QList<QList<double>>* a,
                                       int coefCount, FilterTypeEnum type, double thetaP,
                                       double theta1, double theta2)
{
    if (!b || !a)
        return -1;
    const int count = int(std::min(std::min(b->size(), a->size()), qsizetype(MaxOrder / 2)));
    double bb[MaxOrder / 2][5] = {};
    double aa[MaxOrder / 2][5] = {};
    for (int s = 0; s < count; ++s)
        for (int i = 0; i < 5; ++i) {
            bb[s][i] = i < (*b)[s].size() ? (*b)[s][i] : 0.0;
            aa[s][i] = i < (*a)[s].size() ? (*a)[s][i] : 0.0;
        }
    const int result = FilterTransform(bb, aa, count, coefCount, type, thetaP, theta1, theta2);
    if (result < 0)
        return result;
    for (int s = 0; s < count; ++s) {
        (*b)[s] = QList<double>(bb[s], bb[s] + result);
        (*a)[s] = QList<double>(aa[s], aa[s] + result);
    }
    return result;
}

float ButterworthFilter::InternalProcess(float x)
{
    switch (m_mode) {
    case LowPass:
        return m_second ? m_second->InternalProcess(x) : x;
    case HighPass:
        return m_first ? m_first->InternalProcess(x) : x;
    case BandPass:
    case BandStop:
        if (m_second)
            x = m_second->InternalProcess(x);
        return m_first ? m_first->InternalProcess(x) : x;
    default:
        return x;
    }
}

void ButterworthFilter::processBlock(float* in, float* out, int count, int inStride,
                                     int outStride)
{
    const bool inPlace = in == out && inStride == outStride;
    if (!inPlace && (inStride != 1 || outStride != 1)) {
        AbstractFilter::processBlock(in, out, count, inStride, outStride);
        return;
    }
    // The stages in the order InternalProcess applies them; each one's output is a float, so
    // running them one after another over the block gives the same results.
    IIRFilter* stages[2] = {nullptr, nullptr};
    switch (m_mode) {
    case LowPass: stages[0] = m_second; break;
    case HighPass: stages[0] = m_first; break;
    case BandPass:
    case BandStop: stages[0] = m_second; stages[1] = m_first; break;
    default: break;
    }
    if (!inPlace) {
        if (stages[0])
            stages[0]->Process(in, out, count);
        else
            std::copy(in, in + count, out);
        stages[0] = nullptr;
    }
    for (IIRFilter* stage : stages)
        if (stage)
            stage->Process(out, count, outStride);
}

void ButterworthFilter::Reset()
{
    if (m_hasFirst)
        m_first->Reset();
    if (m_hasSecond)
        m_second->Reset();
}
