#pragma once

#include "core/RhythmNormSample.h"

#include <QJsonObject>
#include <QList>
#include <QMetaType>

// Outcome of one pass of the engine's data path. The spectrum and index parts are filled when
// this pass completed a spectrum step; the index samples always carry the latest readings.
struct CortexDataResult
{
    QList<QList<float>> filteredBlock;   // per montage channel, per sample
    QList<float> channelValues;          // signal quality per montage channel, %
    bool hasSpectrum = false;            // this pass produced a new spectrum
    QList<QList<float>> spectrum;        // that spectrum: per channel, per bin, in µV
    bool hasIndexValues = false;         // this pass produced new meditation/concentration readings
    // One {"name": <algorithm name>, "value": <double>} per custom algorithm, in list order.
    QList<QJsonObject> algorithmResults;
    bool hasAlgorithmResults = false;
    RhythmNormSample meditation;
    bool mentalStateFlag = false;
    RhythmNormSample concentration;
};

Q_DECLARE_METATYPE(CortexDataResult)
