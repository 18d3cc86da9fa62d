#pragma once

#include <QList>
#include <QObject>
#include <QString>

// Base of the single-channel, sample-by-sample filters. Subclasses supply one step
// (InternalProcess) and Reset; the base turns the step into the block entry points.
class AbstractFilter : public QObject
{
    Q_OBJECT
public:
    // The numeric values are part of the interface: the engine passes them as integers.
    enum ImpulseResponseEnum { FIR = 0, IIR = 1 };
    Q_ENUM(ImpulseResponseEnum)

    enum FilterTypeEnum { LowPass = 0, HighPass = 1, BandPass = 2, BandStop = 3 };
    Q_ENUM(FilterTypeEnum)

    // Window shapes accepted by FIRfilter; its recursive design does not depend on them.
    enum WindowTypeEnum { Rectangular = 0, Hamming = 1, Hann = 2, Blackman = 3 };
    Q_ENUM(WindowTypeEnum)

    AbstractFilter(ImpulseResponseEnum impulseResponse, QString name, QObject* parent = nullptr);
    ~AbstractFilter() override = default;

    // One step: one input sample in, one output sample out.
    virtual float InternalProcess(float x) = 0;
    // Clears the delay state; the coefficients stay.
    virtual void Reset() = 0;

    void Process(float* in, float* out, int count);
    void Process(float* data, int count);
    // In place on every stride-th float starting at data[0] (interleaved multichannel buffers).
    void Process(float* data, int count, int stride);
    // count < 0 means the whole input; an empty out is first filled with count zeros.
    void Process(QList<float>* in, QList<float>* out, int count);
    // In place; count < 0 means the whole list, 0 does nothing.
    void Process(QList<float>* data, int count);

    ImpulseResponseEnum getImpulseResponse() const { return m_impulseResponse; }
    QString getName() const { return m_name; }

protected:
    // Filters count samples read every inStride floats from in and written every outStride
    // floats to out (in is only read; it may equal out). The default steps InternalProcess sample by sample;
    // subclasses may override it with a loop that keeps the delay state in registers, as long
    // as the results stay the same.
    virtual void processBlock(float* in, float* out, int count, int inStride, int outStride);

    ImpulseResponseEnum m_impulseResponse;
    QString m_name;
};
