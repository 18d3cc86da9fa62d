#pragma once

#include <QMetaProperty>
#include <QString>
#include <QVariant>

// Converts between text and the value type of a settings property. One set of rules serves
// typed input (commands, command line), the settings file and the declared defaults, so a
// value that can be written as text can always be read back.
class MetaValueConverter
{
public:
    enum class Kind { Bool, Integer, Float, Double, String, Enum, DateTime, Point, Size, Other };

    static Kind kindOf(const QMetaProperty& property);
    static bool isNumeric(Kind kind) { return kind == Kind::Integer || kind == Kind::Float || kind == Kind::Double; }

    // Text to a value of the property's type. On refusal returns false and says why in reason.
    static bool fromText(const QString& text, const QMetaProperty& property, QVariant& value, QString& reason);
    // Any variant to the property's type; values of another type go through their text form.
    static bool fromVariant(const QVariant& input, const QMetaProperty& property, QVariant& value, QString& reason);
    // Text form that fromText reads back: enum keys, "true"/"false", ISO dates, "x,y", "wxh".
    static QString toText(const QVariant& value, const QMetaProperty& property);

    // "QPoint(1, 2)", "QSizeF(3.5,4)", "(1,2)", "1,2", "1x2", "1 2".
    static bool parsePointOrSize(const QString& text, double& first, double& second);
    // Shortest text that reads back to the same number.
    static QString numberText(double value);
    static QString floatText(float value);

private:
    static bool integerFromText(const QString& text, const QMetaType& type, QVariant& value, QString& reason);
    static bool realFromText(const QString& text, Kind kind, QVariant& value, QString& reason);
    static bool boolFromText(const QString& text, QVariant& value, QString& reason);
    static bool enumFromText(const QString& text, const QMetaEnum& enumeration, QVariant& value, QString& reason);
    static bool pairFromText(const QString& text, const QMetaType& type, QVariant& value, QString& reason);
};
