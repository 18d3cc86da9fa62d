#pragma once

#include <QList>
#include <QString>

class TextHelper
{
public:
    // Splits at the separator, trims every piece and drops the empty ones.
    static QList<QString> splitAndTrim(const QString& text, const QString& separator = QStringLiteral(","));
};
