#pragma once

#include <QList>
#include <QString>

// One piece of a visibility bound: "Name:values". The values read as alternatives separated
// by "|"; each alternative is a chain of terms joined by "&&", and "!" before a term negates
// it. So "|" binds loosest: "A|!B&&!C" holds for A, or for anything that is neither B nor C.
// Terms compare with the other property's text form (enum key, "true"/"false", number text),
// ignoring letter case; numbers compare by value ("2" matches "2.0").
class VisibilityCondition
{
public:
    struct Term
    {
        QString value;
        bool negated = false;
    };

    // Splits a bound at ";" into conditions; empty pieces are skipped. A malformed piece is
    // left out and described in problem (the remaining pieces still apply).
    static QList<VisibilityCondition> parseList(const QString& text, QString* problem = nullptr);
    static bool parse(const QString& piece, VisibilityCondition& condition);

    bool holds(const QString& currentValue) const;

    QString getPropertyName() const { return m_propertyName; }
    QList<QList<Term>> getAlternatives() const { return m_alternatives; }

private:
    QString m_propertyName;
    QList<QList<Term>> m_alternatives;
};
