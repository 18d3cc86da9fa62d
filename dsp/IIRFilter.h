#pragma once

#include "dsp/AbstractFilter.h"

// Recursive filter in 32-bit float: either one direct-form I polynomial pair, or a cascade of
// second-order direct-form sections followed by an overall gain.
class IIRFilter : public AbstractFilter
{
    Q_OBJECT
public:
    // Direct form. a[0] is taken to be 1 and never read: the coefficients must come normalised.
    IIRFilter(QList<float>* b, QList<float>* a, QObject* parent = nullptr);
    // Cascade form: each inner list is {b0, b1, b2, a0, a1, a2} (missing entries count as 0).
    IIRFilter(QList<QList<float>>* sections, float gain, QObject* parent = nullptr);
    ~IIRFilter() override;

    float InternalProcess(float x) override;
    void Reset() override;

    bool isCascade() const { return m_cascade; }
    QList<float> getB() const { return m_b; }
    QList<float> getA() const { return m_a; }
    float getGain() const { return m_gain; }
    int getSectionCount() const { return m_sectionCount; }
    const IIRFilter* getSection(int index) const;

protected:
    void processBlock(float* in, float* out, int count, int inStride, int outStride) override;

private:
    float processDirect(float x);
    void processSecondOrder(const float* in, float* out, int count, int inStride, int outStride);

    QList<float> m_b;
    int m_nb = 0;
    QList<float> m_a;
    int m_na = 0;
    float m_gain = 1.0f;
    QList<IIRFilter*> m_sections;
    int m_sectionCount = 0;
    QList<float> m_xh;
    QList<float> m_yh;
    bool m_cascade = false;
};
