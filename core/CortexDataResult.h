#pragma once

#include "core/RhythmNormSample.h"

#include <QJsonObject>
#include <QList>
#include <QMetaType>

// Outcome of one pass of the engine's data path.
struct CortexDataResult
{
    QList<QList<float>> filteredBlock;  // per montage channel, per sample
    QList<float> channelValues;         // per-channel values of this block (signal quality, %)
    bool hasSpectrum = false;           // a new spectrum was computed in this pass
    QList<QList<float>> secondBlock;    // the newest spectrum, per channel
    bool hasRhythms = false;
    QList<QJsonObject> algorithmResults; // one object per custom algorithm
    bool hasAlgorithmResults = false;
    RhythmNormSample meditation;
    bool mentalStateFlag = false;
    RhythmNormSample concentration;
};

Q_DECLARE_METATYPE(CortexDataResult)
