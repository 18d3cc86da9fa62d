#pragma once

#include <QString>

// One signal's header fields as stored in the file (texts in ASCII when written).
class EdfSignalHeader
{
public:
    QString label;
    QString transducer;
    QString physicalDimension;
    double physicalMin = -32768.0;
    double physicalMax = 32767.0;
    int digitalMin = -32768;
    int digitalMax = 32767;
    QString prefiltering;
    int samplesPerRecord = 0;
    QString reserved;

    // True for "EDF Annotations" and "BDF Annotations" (either label, either format).
    bool isAnnotation() const;
    // Physical units per digital step; phys = physicalMin + (dig - digitalMin) x gain.
    double gain() const;

    static EdfSignalHeader annotationSignal(bool bdf, int bytesPerRecord);
};
