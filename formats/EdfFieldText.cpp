#include "formats/EdfFieldText.h"

#include <cmath>

QString EdfFieldText::toAscii(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString result;
    result.reserve(decomposed.size());
    for (const QChar c : decomposed)
    {
        const ushort u = c.unicode();
        if (u >= 32 && u <= 126)
            result.append(c);
        else if (c.category() != QChar::Mark_NonSpacing)
            result.append(QLatin1Char('_'));
    }
    return result;
}

QByteArray EdfFieldText::fixed(const QString& text, int width)
{
    QByteArray bytes = toAscii(text).toLatin1().left(width);
    bytes.append(QByteArray(width - bytes.size(), ' '));
    return bytes;
}

bool EdfFieldText::formatNumber(double value, int direction, QByteArray* out)
{
    if (!std::isfinite(value))
        return false;
    for (int decimals = 7; decimals >= 0; --decimals)
    {
        const double scale = std::pow(10.0, decimals);
        const double scaled = value * scale;
        double rounded = std::round(scaled);
        // Values that are exact at this precision must not move by a floating-point hair.
        const bool exact = std::fabs(scaled - rounded) <= 1e-9 * std::max(1.0, std::fabs(scaled));
        if (!exact && direction < 0)
            rounded = std::floor(scaled);
        else if (!exact && direction > 0)
            rounded = std::ceil(scaled);
        QByteArray text = QByteArray::number(rounded / scale, 'f', decimals);
        if (text.contains('.'))
        {
            while (text.endsWith('0'))
                text.chop(1);
            if (text.endsWith('.'))
                text.chop(1);
        }
        if (text == "-0")
            text = "0";
        if (text.size() <= 8)
        {
            *out = text;
            return true;
        }
    }
    return false;
}

QByteArray EdfFieldText::formatTicks(qint64 ticks, bool withSign)
{
    const bool negative = ticks < 0;
    const quint64 magnitude = negative ? 0 - static_cast<quint64>(ticks) : static_cast<quint64>(ticks);
    QByteArray text;
    if (negative)
        text.append('-');
    else if (withSign)
        text.append('+');
    text.append(QByteArray::number(magnitude / TicksPerSecond));
    const quint64 fraction = magnitude % TicksPerSecond;
    if (fraction != 0)
    {
        QByteArray digits = QByteArray::number(fraction).rightJustified(7, '0');
        while (digits.endsWith('0'))
            digits.chop(1);
        text.append('.').append(digits);
    }
    return text;
}

bool EdfFieldText::parseTicks(const QByteArray& text, bool allowSign, qint64* ticks)
{
    int pos = 0;
    bool negative = false;
    if (allowSign && !text.isEmpty() && (text[0] == '+' || text[0] == '-'))
    {
        negative = text[0] == '-';
        pos = 1;
    }
    qint64 whole = 0;
    int wholeDigits = 0;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9')
    {
        if (++wholeDigits > 11) // 10^11 s is far beyond any recording; keeps ticks in 64 bits
            return false;
        whole = whole * 10 + (text[pos++] - '0');
    }
    if (wholeDigits == 0)
        return false;
    qint64 fraction = 0;
    if (pos < text.size() && text[pos] == '.')
    {
        ++pos;
        int digits = 0;
        qint64 scale = TicksPerSecond / 10;
        while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9')
        {
            fraction += (text[pos++] - '0') * scale;
            scale /= 10;
            ++digits;
        }
        if (digits == 0)
            return false;
    }
    if (pos != text.size())
        return false;
    const qint64 value = whole * TicksPerSecond + fraction;
    *ticks = negative ? -value : value;
    return true;
}

bool EdfFieldText::parseInteger(const QByteArray& field, qint64* value)
{
    bool ok = false;
    *value = field.trimmed().toLongLong(&ok);
    return ok;
}

bool EdfFieldText::parseDouble(const QByteArray& field, double* value)
{
    bool ok = false;
    *value = field.trimmed().toDouble(&ok);
    return ok && std::isfinite(*value);
}
