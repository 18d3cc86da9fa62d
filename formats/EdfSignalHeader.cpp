#include "formats/EdfSignalHeader.h"

bool EdfSignalHeader::isAnnotation() const
{
    const QString trimmed = label.trimmed();
    return trimmed == QLatin1String("EDF Annotations") || trimmed == QLatin1String("BDF Annotations");
}

double EdfSignalHeader::gain() const
{
    return (physicalMax - physicalMin) / (static_cast<double>(digitalMax) - digitalMin);
}

EdfSignalHeader EdfSignalHeader::annotationSignal(bool bdf, int bytesPerRecord)
{
    EdfSignalHeader header;
    header.label = bdf ? QStringLiteral("BDF Annotations") : QStringLiteral("EDF Annotations");
    header.physicalMin = -1.0;
    header.physicalMax = 1.0;
    header.digitalMin = bdf ? -8388608 : -32768;
    header.digitalMax = bdf ? 8388607 : 32767;
    header.samplesPerRecord = bytesPerRecord / (bdf ? 3 : 2);
    return header;
}
