#include "dsp/AbstractFilter.h"

#include <algorithm>

AbstractFilter::AbstractFilter(ImpulseResponseEnum impulseResponse, QString name, QObject* parent)
    : QObject(parent), m_impulseResponse(impulseResponse), m_name(name)
{
    setObjectName(name);
}

void AbstractFilter::processBlock(float* in, float* out, int count, int inStride, int outStride)
{
    for (int i = 0; i < count; ++i, in += inStride, out += outStride)
        *out = InternalProcess(*in);
}

void AbstractFilter::Process(float* in, float* out, int count)
{
    if (in && out && count > 0)
        processBlock(in, out, count, 1, 1);
}

void AbstractFilter::Process(float* data, int count)
{
    if (data && count > 0)
        processBlock(data, data, count, 1, 1);
}

void AbstractFilter::Process(float* data, int count, int stride)
{
    if (data && count > 0 && stride > 0)
        processBlock(data, data, count, stride, stride);
}

void AbstractFilter::Process(QList<float>* in, QList<float>* out, int count)
{
    if (!in || !out)
        return;
    if (count < 0)
        count = int(in->size());
    if (out->isEmpty())
        out->fill(0.0f, count);
    // Never read or write past either list, whatever count the caller passed.
    count = int(std::min<qsizetype>({qsizetype(count), in->size(), out->size()}));
    if (count <= 0)
        return;
    float* dst = out->data();
    // Same list, or both sharing one buffer: the in-place step is safe.
    float* src = in == out ? dst : const_cast<float*>(in->constData());
    processBlock(src, dst, count, 1, 1);
}

void AbstractFilter::Process(QList<float>* data, int count)
{
    if (!data || count == 0)
        return;
    if (count < 0 || count > data->size())
        count = int(data->size());
    Process(data->data(), count);
}
