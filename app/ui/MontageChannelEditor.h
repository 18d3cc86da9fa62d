#pragma once

#include "dsp/MontageChannel.h"

#include <QList>
#include <QString>
#include <QStringList>

// One edit of one montage channel as typed by a person: the text is checked against the device
// (its inputs and sampling rate) and the rest of the montage, and applied only when it makes
// sense. A cut-off of 0 (or an empty field) means the channel follows the common filter.
class MontageChannelEditor
{
public:
    // The field names, one per column of the montage table.
    static const QStringList& fields();

    int inputCount = 0;
    double samplingRate = 0;
    double commonHighPass = 0;
    double commonLowPass = 0;
    QStringList typeNames;

    // Applies `text` to `field` of channel `row` of `montage`; false with `error` set when the
    // text is refused (the montage is then unchanged).
    bool apply(QList<MontageChannel>& montage, int row, const QString& field, const QString& text,
               QString& error) const;

private:
    bool applyName(QList<MontageChannel>& montage, int row, const QString& text, QString& error) const;
    bool applyInput(MontageChannel& channel, const QString& field, const QString& text, QString& error) const;
    bool applyNumber(MontageChannel& channel, const QString& field, double value, QString& error) const;
    bool checkFilters(const MontageChannel& channel, QString& error) const;
};
