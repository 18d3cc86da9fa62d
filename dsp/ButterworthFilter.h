#pragma once

#include "dsp/AbstractFilter.h"

class IIRFilter;

// Butterworth low/high/band-pass/band-stop built from one or two cascades of second-order
// IIR sections. The design has its own arithmetic (see Butter) and is not the textbook one.
class ButterworthFilter : public AbstractFilter
{
    Q_OBJECT
public:
    static constexpr int MaxOrder = 20;

    // LowPass uses frequency1, HighPass uses frequency2; band types use both (see the .cpp).
    ButterworthFilter(FilterTypeEnum type, int order, float sampleRate, float frequency1,
                      float frequency2, QObject* parent = nullptr);
    ~ButterworthFilter() override;

    // Designs LowPass or HighPass as sections {b0, b1, b2, a0, a1, a2} with b0 = 1 plus an
    // overall gain. Other types set gain = 1 and leave sections untouched.
    static void Butter(QList<QList<float>>* sections, float* gain, FilterTypeEnum type, int order,
                       float frequency1, float frequency2, float sampleRate);

    float InternalProcess(float x) override;
    void Reset() override;

    int getMode() const { return m_mode; }
    int getMaxOrder() const { return m_maxOrder; }
    const IIRFilter* getFirstCascade() const { return m_first; }
    const IIRFilter* getSecondCascade() const { return m_second; }

protected:
    void processBlock(float* in, float* out, int count, int inStride, int outStride) override;

private:
    // Rewrites every section (up to five coefficients per polynomial) by the frequency
    // transformation from prototype cut-off thetaP to the target edges; returns the number of
    // coefficients per polynomial afterwards, or -1 for an unknown type.
    static int FilterTransform(double (*b)[5], double (*a)[5], int sectionCount, int coefCount,
                               FilterTypeEnum type, double thetaP, double theta1, double theta2);
    static int FilterTransform(QList<QList<double>>* b, QList<QList<double>>* a, int coefCount,
                               FilterTypeEnum type, double thetaP, double theta1, double theta2);

    IIRFilter* makeCascade(FilterTypeEnum type, int order, float frequency, float sampleRate);

    IIRFilter* m_first = nullptr;
    IIRFilter* m_second = nullptr;
    bool m_hasFirst = false;
    bool m_hasSecond = false;
    int m_mode = 0;
    int m_maxOrder = MaxOrder;
};
