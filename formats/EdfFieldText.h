#pragma once

#include <QByteArray>
#include <QString>

// Text rules shared by the EDF/BDF writer and reader: fixed-width ASCII fields, numbers that
// fit 8 characters, and times held as integer 100 ns ticks (never summed as floats).
class EdfFieldText
{
public:
    static constexpr qint64 TicksPerSecond = 10000000;

    // Printable ASCII only: accents are dropped (NFKD), anything else becomes '_'.
    static QString toAscii(const QString& text);
    // Left-justified, blank-padded, cut to `width` bytes.
    static QByteArray fixed(const QString& text, int width);
    // Shortest text of at most 8 characters; direction -1 rounds down, +1 up, 0 to nearest.
    // False when the value cannot be written in 8 characters.
    static bool formatNumber(double value, int direction, QByteArray* out);
    // "[+|-]seconds[.fraction]" with trailing zeros of the fraction dropped.
    static QByteArray formatTicks(qint64 ticks, bool withSign);
    // Strict grammar "[sign]digits[.digits]"; digits beyond 100 ns are cut. False on any
    // other text or on overflow.
    static bool parseTicks(const QByteArray& text, bool allowSign, qint64* ticks);
    static bool parseInteger(const QByteArray& field, qint64* value);
    static bool parseDouble(const QByteArray& field, double* value);
};
