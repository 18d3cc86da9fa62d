#include "settings/VisibilityCondition.h"

#include <QStringList>

namespace {

// "2" and "2.0" name the same number: a float setting shows as "2" but may be written either way.
bool sameValue(const QString& current, const QString& expected)
{
    if (current.compare(expected, Qt::CaseInsensitive) == 0)
        return true;
    bool currentIsNumber = false;
    bool expectedIsNumber = false;
    const double a = current.toDouble(&currentIsNumber);
    const double b = expected.toDouble(&expectedIsNumber);
    return currentIsNumber && expectedIsNumber && a == b;
}

} // namespace

QList<VisibilityCondition> VisibilityCondition::parseList(const QString& text, QString* problem)
{
    QList<VisibilityCondition> conditions;
    QStringList bad;
    for (const QString& piece : text.split(QLatin1Char(';'))) {
        if (piece.trimmed().isEmpty())
            continue;
        VisibilityCondition condition;
        if (parse(piece, condition))
            conditions.append(condition);
        else
            bad.append(piece.trimmed());
    }
    if (problem)
        *problem = bad.isEmpty() ? QString()
                                 : QStringLiteral("malformed condition \"%1\"").arg(bad.join(QStringLiteral("\", \"")));
    return conditions;
}

bool VisibilityCondition::parse(const QString& piece, VisibilityCondition& condition)
{
    const int colon = piece.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return false;
    VisibilityCondition parsed;
    parsed.m_propertyName = piece.left(colon).trimmed();
    if (parsed.m_propertyName.isEmpty())
        return false;
    for (const QString& alternative : piece.mid(colon + 1).split(QLatin1Char('|'))) {
        QList<Term> terms;
        for (const QString& rawTerm : alternative.split(QStringLiteral("&&"))) {
            Term term;
            term.value = rawTerm.trimmed();
            if (term.value.startsWith(QLatin1Char('!'))) {
                term.negated = true;
                term.value = term.value.mid(1).trimmed();
            }
            if (term.value.isEmpty())
                return false;
            terms.append(term);
        }
        parsed.m_alternatives.append(terms);
    }
    condition = parsed;
    return true;
}

bool VisibilityCondition::holds(const QString& currentValue) const
{
    for (const QList<Term>& terms : m_alternatives) {
        bool all = true;
        for (const Term& term : terms) {
            const bool equal = sameValue(currentValue, term.value);
            if (equal == term.negated) {
                all = false;
                break;
            }
        }
        if (all)
            return true;
    }
    return false;
}
