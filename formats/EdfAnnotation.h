#pragma once

#include <QString>

// One annotation text of a TAL. Times in 100 ns ticks from the header's start time (the
// whole second written in the header), as the file stores them.
class EdfAnnotation
{
public:
    qint64 onsetTicks = 0;
    qint64 durationTicks = -1; // -1: no duration given
    QString text;
    qint64 record = 0;         // data record the TAL was found in
};
