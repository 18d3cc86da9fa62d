#include "dsp/FIRfilter.h"

#include <algorithm>
#include <cmath>

FIRfilter::FIRfilter(FilterTypeEnum type, WindowTypeEnum /*window*/, int order, float sampleRate,
                     float frequency, QObject* parent)
    : AbstractFilter(FIR, QStringLiteral("FIRFilter"), parent)
{
    order = std::min(order, MaxOrder);
    const int n = (order + order % 2) / 2;
    if (n < 1 || !(sampleRate > 0) || !std::isfinite(sampleRate))
        return;
    m_order = 2 * n;

    const double fs = sampleRate;
    const double fc = std::clamp(double(frequency), 0.0, fs / 2);
    // The high-pass is the low-pass at fs/2 - fc mirrored by z -> -z.
    const double f = type == HighPass ? fs / 2 - fc : fc;
    const double a = std::tan(M_PI * f / fs);
    const double a2 = a * a;

    m_coefficients.resize(n);
    m_history.assign(n, {0, 0, 0, 0, 0});
    for (int k = 0; k < n; ++k) {
        const double r = std::sin(M_PI * (2 * k + 1) / (4.0 * n));
        const double s = a2 + 2 * a * r + 1;
        std::array<double, 5>& c = m_coefficients[k];
        c = {a2 / s, 2 * a2 / s, a2 / s, 2 * (1 - a2) / s, -(a2 - 2 * a * r + 1) / s};
        if (type == HighPass) {
            c[1] = -c[1];
            c[3] = -c[3];
        }
    }
}

std::array<double, 5> FIRfilter::getSectionCoefficients(int index) const
{
    if (index < 0 || index >= getSectionCount())
        return {0, 0, 0, 0, 0};
    return m_coefficients[index];
}

namespace {

// One second-order section; h = {x, x1, x2, y1, y2}. The feedback term y1 is added last so
// that the recursion y1 -> y has the shortest latency (one multiply and one add).
inline double sectionStep(const std::array<double, 5>& c, std::array<double, 5>& h, double x)
{
    h[0] = x;
    const double y = c[0] * h[0] + c[1] * h[1] + c[2] * h[2] + c[4] * h[4] + c[3] * h[3];
    h[2] = h[1];
    h[1] = x;
    h[4] = h[3];
    h[3] = y;
    return y;
}

} // namespace

float FIRfilter::InternalProcess(float x)
{
    double v = x;
    const int n = int(m_coefficients.size());
    const std::array<double, 5>* c = m_coefficients.data();
    std::array<double, 5>* h = m_history.data();
    for (int k = 0; k < n; ++k)
        v = sectionStep(c[k], h[k], v);
    return float(v);
}

namespace {

// Sections unrolled into plain scalars so the compiler keeps the whole state in registers for
// a block; the arithmetic is exactly that of sectionStep.
struct ScalarSection
{
    double b0, b1, b2, c1, c2;
    double x1, x2, y1, y2;

    void load(const std::array<double, 5>& c, const std::array<double, 5>& h)
    {
        b0 = c[0]; b1 = c[1]; b2 = c[2]; c1 = c[3]; c2 = c[4];
        x1 = h[1]; x2 = h[2]; y1 = h[3]; y2 = h[4];
    }
    void save(std::array<double, 5>& h) const { h = {x1, x1, x2, y1, y2}; }
    double step(double x)
    {
        const double y = b0 * x + b1 * x1 + b2 * x2 + c2 * y2 + c1 * y1;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

template <int N>
struct ScalarCascade
{
    ScalarSection head;
    ScalarCascade<N - 1> tail;

    void load(const std::array<double, 5>* c, const std::array<double, 5>* h)
    {
        head.load(*c, *h);
        tail.load(c + 1, h + 1);
    }
    void save(std::array<double, 5>* h) const
    {
        head.save(*h);
        tail.save(h + 1);
    }
    double step(double x) { return tail.step(head.step(x)); }
};

template <>
struct ScalarCascade<0>
{
    void load(const std::array<double, 5>*, const std::array<double, 5>*) {}
    void save(std::array<double, 5>*) const {}
    double step(double x) { return x; }
};

} // namespace

template <int Sections>
void FIRfilter::processSections(const float* in, float* out, int count, int inStride, int outStride)
{
    ScalarCascade<Sections> cascade;
    cascade.load(m_coefficients.data(), m_history.data());
    for (int i = 0; i < count; ++i, in += inStride, out += outStride)
        *out = float(cascade.step(*in));
    cascade.save(m_history.data());
}

void FIRfilter::processBlock(float* in, float* out, int count, int inStride, int outStride)
{
    switch (m_coefficients.size()) {
    case 0:
        for (int i = 0; i < count; ++i, in += inStride, out += outStride)
            *out = *in;
        break;
    case 1: processSections<1>(in, out, count, inStride, outStride); break;
    case 2: processSections<2>(in, out, count, inStride, outStride); break;
    case 3: processSections<3>(in, out, count, inStride, outStride); break;
    case 4: processSections<4>(in, out, count, inStride, outStride); break;
    default: AbstractFilter::processBlock(in, out, count, inStride, outStride); break;
    }
}

void FIRfilter::Reset()
{
    for (std::array<double, 5>& h : m_history)
        h.fill(0.0);
}

void FIRfilter::calcCoefs(FilterTypeEnum type, int length, float frequency1, float frequency2,
                          float sampleRate)
{
    const int taps = length + 1;
    if (taps < 1 || !(sampleRate > 0))
        return;
    if (m_firCoefficients.size() < taps)
        m_firCoefficients.resize(taps, 0.0);

    const double theta1 = frequency1 / sampleRate;
    const double theta2 = frequency2 / sampleRate;
    const int half = int(std::floor(taps * 0.5));
    // Odd lengths have a centre tap at k = 0; even lengths sit on half-sample offsets.
    const double centre = taps % 2 ? half : half - 0.5;
    auto lowPass = [](double theta, double k) {
        return k == 0 ? 2 * theta : std::sin(2 * M_PI * theta * k) / (M_PI * k);
    };
    for (int i = 0; i < taps; ++i) {
        const double k = i - centre;
        const double delta = k == 0 ? 1.0 : 0.0;
        double tap = 0;
        switch (type) {
        case LowPass: tap = lowPass(theta1, k); break;
        case HighPass: tap = delta - lowPass(theta1, k); break;
        case BandPass: tap = lowPass(theta2, k) - lowPass(theta1, k); break;
        case BandStop: tap = delta - (lowPass(theta2, k) - lowPass(theta1, k)); break;
        }
        const double window = taps > 1 ? 0.54 - 0.46 * std::cos(2 * M_PI * i / (taps - 1)) : 1.0;
        m_firCoefficients[i] = tap * window;
    }
}
