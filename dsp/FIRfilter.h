#pragma once

#include "dsp/AbstractFilter.h"

#include <array>
#include <vector>

// Despite its name this is a recursive filter: a cascade of second-order Butterworth
// low-pass or high-pass sections run in double precision. It is the engine's default family.
class FIRfilter : public AbstractFilter
{
    Q_OBJECT
public:
    static constexpr int MaxOrder = 20;

    // The window argument is accepted and ignored. An odd order is rounded up to the next even
    // one; order < 1 or a non-positive sample rate gives a pass-through filter.
    FIRfilter(FilterTypeEnum type, WindowTypeEnum window, int order, float sampleRate,
              float frequency, QObject* parent = nullptr);

    float InternalProcess(float x) override;
    void Reset() override;

    int getOrder() const { return m_order; }
    int getSectionCount() const { return int(m_coefficients.size()); }
    // {b0, b1, b2, c1, c2} with y = b0*x + b1*x1 + b2*x2 + c1*y1 + c2*y2.
    std::array<double, 5> getSectionCoefficients(int index) const;

protected:
    void processBlock(float* in, float* out, int count, int inStride, int outStride) override;

    // Windowed-sinc taps (Hamming window) into the coefficient list; the recursive design
    // above does not use them.
    void calcCoefs(FilterTypeEnum type, int length, float frequency1, float frequency2,
                   float sampleRate);

private:
    template <int Sections>
    void processSections(const float* in, float* out, int count, int inStride, int outStride);

    int m_order = 0;
    std::vector<std::array<double, 5>> m_coefficients;
    // Per section {x, x1, x2, y1, y2}.
    std::vector<std::array<double, 5>> m_history;
    QList<double> m_firCoefficients;
    int m_reserved = 150; // set at construction, read by nothing in the filter
};
