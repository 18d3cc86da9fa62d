#include "dsp/IIRFilter.h"

IIRFilter::IIRFilter(QList<float>* b, QList<float>* a, QObject* parent)
    : AbstractFilter(IIR, QStringLiteral("IIRFilter"), parent)
{
    if (b)
        m_b = *b;
    if (a)
        m_a = *a;
    m_nb = int(m_b.size());
    m_na = int(m_a.size());
    m_xh.fill(0.0f, m_nb);
    m_yh.fill(0.0f, m_na);
}

IIRFilter::IIRFilter(QList<QList<float>>* sections, float gain, QObject* parent)
    : AbstractFilter(IIR, QStringLiteral("IIRFilter"), parent), m_gain(gain), m_cascade(true)
{
    if (!sections)
        return;
    m_sections.reserve(sections->size());
    for (const QList<float>& section : *sections) {
        QList<float> b(3, 0.0f);
        QList<float> a(3, 0.0f);
        for (int i = 0; i < 3 && i < section.size(); ++i)
            b[i] = section[i];
        for (int i = 0; i < 3 && i + 3 < section.size(); ++i)
            a[i] = section[i + 3];
        m_sections.append(new IIRFilter(&b, &a));
    }
    m_sectionCount = int(m_sections.size());
}

IIRFilter::~IIRFilter()
{
    qDeleteAll(m_sections);
}

const IIRFilter* IIRFilter::getSection(int index) const
{
    return index >= 0 && index < m_sectionCount ? m_sections[index] : nullptr;
}

inline float IIRFilter::processDirect(float x)
{
    const float* b = m_b.constData();
    const float* a = m_a.constData();
    float* xh = m_xh.data();
    float* yh = m_yh.data();

    float y = m_nb > 0 ? x * b[0] : 0.0f;
    for (int i = m_nb - 1; i >= 1; --i) {
        xh[i] = xh[i - 1];
        y += b[i] * xh[i];
    }
    if (m_nb > 0)
        xh[0] = x;
    for (int i = m_na - 1; i >= 1; --i) {
        yh[i] = yh[i - 1];
        y -= a[i] * yh[i];
    }
    if (m_na > 0)
        yh[0] = y;
    return y;
}

float IIRFilter::InternalProcess(float x)
{
    if (!m_cascade)
        return processDirect(x);
    IIRFilter* const* sections = m_sections.constData();
    for (int i = 0; i < m_sectionCount; ++i)
        x = sections[i]->processDirect(x);
    return x * m_gain;
}

// The direct form of processDirect for three b and three a coefficients (notches and
// sections), with the histories held in locals for the whole block.
void IIRFilter::processSecondOrder(const float* in, float* out, int count, int inStride,
                                   int outStride)
{
    const float b0 = m_b[0], b1 = m_b[1], b2 = m_b[2];
    const float a1 = m_a[1], a2 = m_a[2];
    float x0 = m_xh[0], x1 = m_xh[1], x2 = m_xh[2];
    float y0 = m_yh[0], y1 = m_yh[1], y2 = m_yh[2];
    for (int i = 0; i < count; ++i, in += inStride, out += outStride) {
        const float x = *in;
        float y = x * b0;
        x2 = x1;
        y += b2 * x2;
        x1 = x0;
        y += b1 * x1;
        x0 = x;
        y2 = y1;
        y -= a2 * y2;
        y1 = y0;
        y -= a1 * y1;
        y0 = y;
        *out = y;
    }
    float* xh = m_xh.data();
    float* yh = m_yh.data();
    xh[0] = x0; xh[1] = x1; xh[2] = x2;
    yh[0] = y0; yh[1] = y1; yh[2] = y2;
}

void IIRFilter::processBlock(float* in, float* out, int count, int inStride, int outStride)
{
    if (!m_cascade && m_nb == 3 && m_na == 3) {
        processSecondOrder(in, out, count, inStride, outStride);
        return;
    }
    if (m_cascade && m_sectionCount > 0) {
        // Sections hand floats to each other, so running them one after another over the
        // block gives exactly the per-sample results.
        m_sections[0]->processBlock(in, out, count, inStride, outStride);
        for (int k = 1; k < m_sectionCount; ++k)
            m_sections[k]->processBlock(out, out, count, outStride, outStride);
        for (int i = 0; i < count; ++i, out += outStride)
            *out *= m_gain;
        return;
    }
    for (int i = 0; i < count; ++i, in += inStride, out += outStride)
        *out = IIRFilter::InternalProcess(*in);
}

void IIRFilter::Reset()
{
    m_xh.fill(0.0f);
    m_yh.fill(0.0f);
    for (IIRFilter* section : std::as_const(m_sections))
        section->Reset();
}
