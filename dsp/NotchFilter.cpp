#include "dsp/NotchFilter.h"

#include "dsp/IIRFilter.h"

#include <cmath>

NotchFilter::NotchFilter(float sampleRate, float frequency, float bandwidth, QObject* parent)
    : AbstractFilter(IIR, QStringLiteral("NotchFilter"), parent)
{
    QList<float> b;
    QList<float> a;
    Calculate(&b, &a, BandStop, sampleRate, frequency, bandwidth);
    m_filter = new IIRFilter(&b, &a);
    m_ready = 1;
}

NotchFilter::~NotchFilter()
{
    delete m_filter;
}

float NotchFilter::InternalProcess(float x)
{
    return m_filter->InternalProcess(x);
}

void NotchFilter::processBlock(float* in, float* out, int count, int inStride, int outStride)
{
    if (in == out && inStride == outStride)
        m_filter->Process(out, count, outStride);
    else if (inStride == 1 && outStride == 1)
        m_filter->Process(in, out, count);
    else
        AbstractFilter::processBlock(in, out, count, inStride, outStride);
}

void NotchFilter::Reset()
{
    if (m_ready)
        m_filter->Reset();
}

void NotchFilter::Calculate(QList<float>* b, QList<float>* a, FilterTypeEnum type,
                            float sampleRate, float frequency, float bandwidth)
{
    if (!b || !a || (type != BandStop && type != BandPass))
        return;
    // Two-pole band filter: pole radius R from the bandwidth, zeros on the unit circle at f0.
    const float r = float(1.0 - 3.0 * std::fabs(double(bandwidth)) / double(sampleRate));
    const float r2 = r * r;
    const double cosW = std::cos(2.0 * M_PI * double(frequency) / double(sampleRate));
    const double k = (1.0 - 2.0 * double(r) * cosW + double(r2)) / (2.0 - 2.0 * cosW);

    if (type == BandStop)
        *b = {float(k), float(-2.0 * k * cosW), float(k)};
    else
        *b = {float(1.0 - k), float(2.0 * (k - double(r)) * cosW), float(double(r2) - k)};
    *a = {1.0f, float(-2.0 * double(r) * cosW), r2};
}
