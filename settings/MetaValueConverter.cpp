#include "settings/MetaValueConverter.h"

#include <QDateTime>
#include <QLocale>
#include <QMetaEnum>
#include <QPoint>
#include <QPointF>
#include <QRegularExpression>
#include <QSize>
#include <QSizeF>

#include <cmath>
#include <limits>

namespace {

bool integerLimits(int typeId, qlonglong& low, qulonglong& high)
{
    switch (typeId) {
    case QMetaType::Int: low = std::numeric_limits<int>::min(); high = std::numeric_limits<int>::max(); return true;
    case QMetaType::UInt: low = 0; high = std::numeric_limits<uint>::max(); return true;
    case QMetaType::Long: low = std::numeric_limits<long>::min(); high = std::numeric_limits<long>::max(); return true;
    case QMetaType::ULong: low = 0; high = std::numeric_limits<ulong>::max(); return true;
    case QMetaType::LongLong: low = std::numeric_limits<qlonglong>::min(); high = std::numeric_limits<qlonglong>::max(); return true;
    case QMetaType::ULongLong: low = 0; high = std::numeric_limits<qulonglong>::max(); return true;
    case QMetaType::Short: low = std::numeric_limits<short>::min(); high = std::numeric_limits<short>::max(); return true;
    case QMetaType::UShort: low = 0; high = std::numeric_limits<ushort>::max(); return true;
    case QMetaType::SChar: low = std::numeric_limits<signed char>::min(); high = std::numeric_limits<signed char>::max(); return true;
    case QMetaType::Char: low = std::numeric_limits<char>::min(); high = std::numeric_limits<char>::max(); return true;
    case QMetaType::UChar: low = 0; high = std::numeric_limits<uchar>::max(); return true;
    default: return false;
    }
}

// The text of a variant of another type, precise enough that a number survives the trip.
QString plainText(const QVariant& input)
{
    switch (input.typeId()) {
    case QMetaType::Bool: return input.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double: return MetaValueConverter::numberText(input.toDouble());
    case QMetaType::Float: return MetaValueConverter::floatText(input.toFloat());
    default: return input.toString();
    }
}

bool isPairType(int typeId)
{
    return typeId == QMetaType::QPoint || typeId == QMetaType::QPointF || typeId == QMetaType::QSize
           || typeId == QMetaType::QSizeF;
}

} // namespace

MetaValueConverter::Kind MetaValueConverter::kindOf(const QMetaProperty& property)
{
    if (property.isEnumType())
        return Kind::Enum;
    const int id = property.metaType().id();
    qlonglong low = 0;
    qulonglong high = 0;
    if (integerLimits(id, low, high))
        return Kind::Integer;
    switch (id) {
    case QMetaType::Bool: return Kind::Bool;
    case QMetaType::Float: return Kind::Float;
    case QMetaType::Double: return Kind::Double;
    case QMetaType::QString: return Kind::String;
    case QMetaType::QDateTime: return Kind::DateTime;
    case QMetaType::QPoint:
    case QMetaType::QPointF: return Kind::Point;
    case QMetaType::QSize:
    case QMetaType::QSizeF: return Kind::Size;
    default: return Kind::Other;
    }
}

bool MetaValueConverter::fromText(const QString& text, const QMetaProperty& property, QVariant& value, QString& reason)
{
    const QString trimmed = text.trimmed();
    switch (kindOf(property)) {
    case Kind::Bool: return boolFromText(trimmed, value, reason);
    case Kind::Integer: return integerFromText(trimmed, property.metaType(), value, reason);
    case Kind::Float:
    case Kind::Double: return realFromText(trimmed, kindOf(property), value, reason);
    case Kind::String: value = text; return true;
    case Kind::Enum:
        if (!enumFromText(trimmed, property.enumerator(), value, reason))
            return false;
        value.convert(property.metaType());
        return true;
    case Kind::DateTime: {
        QDateTime time = QDateTime::fromString(trimmed, Qt::ISODateWithMs);
        if (!time.isValid())
            time = QDateTime::fromString(trimmed, Qt::ISODate);
        if (!time.isValid()) {
            reason = QStringLiteral("not an ISO date-time (yyyy-MM-ddThh:mm:ss)");
            return false;
        }
        value = time;
        return true;
    }
    case Kind::Point:
    case Kind::Size: return pairFromText(trimmed, property.metaType(), value, reason);
    case Kind::Other: break;
    }
    QVariant converted(text);
    if (!converted.convert(property.metaType())) {
        reason = QStringLiteral("cannot be read as %1").arg(QString::fromLatin1(property.typeName()));
        return false;
    }
    value = converted;
    return true;
}

bool MetaValueConverter::fromVariant(const QVariant& input, const QMetaProperty& property, QVariant& value,
                                     QString& reason)
{
    if (!input.isValid()) {
        reason = QStringLiteral("no value");
        return false;
    }
    if (input.metaType() != property.metaType())
        return fromText(plainText(input), property, value, reason);

    const Kind kind = kindOf(property);
    if ((kind == Kind::Float || kind == Kind::Double) && !std::isfinite(input.toDouble())) {
        reason = QStringLiteral("not a finite number");
        return false;
    }
    if (kind == Kind::Enum && !property.enumerator().isFlag()
        && !property.enumerator().valueToKey(input.toInt())) {
        reason = QStringLiteral("not a value of %1").arg(QString::fromLatin1(property.enumerator().name()));
        return false;
    }
    value = input;
    return true;
}

QString MetaValueConverter::toText(const QVariant& value, const QMetaProperty& property)
{
    switch (kindOf(property)) {
    case Kind::Bool: return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case Kind::Float: return floatText(value.toFloat());
    case Kind::Double: return numberText(value.toDouble());
    case Kind::Enum: {
        const QMetaEnum enumeration = property.enumerator();
        const int number = value.toInt();
        if (enumeration.isFlag())
            return QString::fromLatin1(enumeration.valueToKeys(number));
        const char* key = enumeration.valueToKey(number);
        return key ? QString::fromLatin1(key) : QString::number(number);
    }
    case Kind::DateTime: return value.toDateTime().toString(Qt::ISODateWithMs);
    case Kind::Point: {
        const QPointF point = value.toPointF();
        return numberText(point.x()) + QLatin1Char(',') + numberText(point.y());
    }
    case Kind::Size: {
        const QSizeF size = value.toSizeF();
        return numberText(size.width()) + QLatin1Char('x') + numberText(size.height());
    }
    default: return value.toString();
    }
}

bool MetaValueConverter::parsePointOrSize(const QString& text, double& first, double& second)
{
    static const QRegularExpression pattern(QStringLiteral(
        R"(^\s*(?:Q(?:Point|Size)F?\s*)?\(?\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)f?)"
        R"((?:\s*[,;xX]\s*|\s+)([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)f?\s*\)?\s*$)"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    bool firstOk = false;
    bool secondOk = false;
    const double a = match.captured(1).toDouble(&firstOk);
    const double b = match.captured(2).toDouble(&secondOk);
    if (!firstOk || !secondOk || !std::isfinite(a) || !std::isfinite(b))
        return false;
    first = a;
    second = b;
    return true;
}

QString MetaValueConverter::numberText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString MetaValueConverter::floatText(float value)
{
    // Widening 0.1f to double shows its binary tail; the shortest float text does not.
    for (int digits = 6; digits < 9; ++digits) {
        const QString text = QString::number(double(value), 'g', digits);
        if (text.toFloat() == value)
            return text;
    }
    return QString::number(double(value), 'g', 9);
}

bool MetaValueConverter::integerFromText(const QString& text, const QMetaType& type, QVariant& value,
                                         QString& reason)
{
    qlonglong low = 0;
    qulonglong high = 0;
    integerLimits(type.id(), low, high);
    bool ok = false;
    QVariant number;
    if (type.id() == QMetaType::ULongLong || type.id() == QMetaType::ULong) {
        const qulonglong parsed = text.toULongLong(&ok);
        ok = ok && parsed <= high;
        number = parsed;
    } else {
        const qlonglong parsed = text.toLongLong(&ok);
        if (ok && (parsed < low || (parsed > 0 && qulonglong(parsed) > high))) {
            reason = QStringLiteral("outside the range of %1").arg(QString::fromLatin1(type.name()));
            return false;
        }
        number = parsed;
    }
    if (!ok) {
        reason = QStringLiteral("not an integer");
        return false;
    }
    number.convert(type);
    value = number;
    return true;
}

bool MetaValueConverter::realFromText(const QString& text, Kind kind, QVariant& value, QString& reason)
{
    bool ok = false;
    const double parsed = text.toDouble(&ok);
    if (!ok || !std::isfinite(parsed)) {
        reason = QStringLiteral("not a number");
        return false;
    }
    if (kind == Kind::Double) {
        value = parsed;
        return true;
    }
    if (std::fabs(parsed) > double(std::numeric_limits<float>::max())) {
        reason = QStringLiteral("outside the range of float");
        return false;
    }
    value = float(parsed);
    return true;
}

bool MetaValueConverter::boolFromText(const QString& text, QVariant& value, QString& reason)
{
    if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || text == QLatin1String("1")) {
        value = true;
        return true;
    }
    if (text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0 || text == QLatin1String("0")) {
        value = false;
        return true;
    }
    reason = QStringLiteral("not a boolean (true, false, 1 or 0)");
    return false;
}

bool MetaValueConverter::enumFromText(const QString& text, const QMetaEnum& enumeration, QVariant& value,
                                      QString& reason)
{
    QStringList keys;
    for (int i = 0; i < enumeration.keyCount(); ++i) {
        const QString key = QString::fromLatin1(enumeration.key(i));
        if (key.compare(text, Qt::CaseInsensitive) == 0) {
            value = enumeration.value(i);
            return true;
        }
        keys.append(key);
    }
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && (enumeration.isFlag() || enumeration.valueToKey(number))) {
        value = number;
        return true;
    }
    if (enumeration.isFlag()) {
        bool ok = false;
        const int combined = enumeration.keysToValue(text.toLatin1().constData(), &ok);
        if (ok) {
            value = combined;
            return true;
        }
    }
    reason = QStringLiteral("unknown value; expected one of %1").arg(keys.join(QStringLiteral(", ")));
    return false;
}

bool MetaValueConverter::pairFromText(const QString& text, const QMetaType& type, QVariant& value,
                                      QString& reason)
{
    double a = 0.0;
    double b = 0.0;
    if (!parsePointOrSize(text, a, b)) {
        reason = QStringLiteral("not a pair of numbers (x,y)");
        return false;
    }
    const bool integral = type.id() == QMetaType::QPoint || type.id() == QMetaType::QSize;
    if (integral) {
        const double limit = double(std::numeric_limits<int>::max());
        if (a != std::trunc(a) || b != std::trunc(b) || std::fabs(a) > limit || std::fabs(b) > limit) {
            reason = QStringLiteral("not a pair of integers");
            return false;
        }
    }
    switch (type.id()) {
    case QMetaType::QPoint: value = QPoint(int(a), int(b)); break;
    case QMetaType::QPointF: value = QPointF(a, b); break;
    case QMetaType::QSize: value = QSize(int(a), int(b)); break;
    default: value = QSizeF(a, b); break;
    }
    return isPairType(type.id());
}
