#pragma once

#include "dsp/AbstractFilter.h"

class IIRFilter;

// Second-order notch (two-pole band-stop) around one frequency, e.g. the mains frequency.
class NotchFilter : public AbstractFilter
{
    Q_OBJECT
public:
    NotchFilter(float sampleRate, float frequency, float bandwidth, QObject* parent = nullptr);
    ~NotchFilter() override;

    float InternalProcess(float x) override;
    void Reset() override;

    const IIRFilter* getFilter() const { return m_filter; }

protected:
    void processBlock(float* in, float* out, int count, int inStride, int outStride) override;

    // Fills three coefficients into b and a for BandStop or BandPass; other types leave the
    // lists untouched. A frequency of 0 divides by zero: callers must not ask for it.
    static void Calculate(QList<float>* b, QList<float>* a, FilterTypeEnum type, float sampleRate,
                          float frequency, float bandwidth);

private:
    IIRFilter* m_filter = nullptr;
    int m_type = BandStop;
    int m_ready = 0;
};
