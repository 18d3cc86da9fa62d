#include "app/ui/AlgorithmForm.h"

#include "dsp/FormulaExpression.h"

#include <QLocale>
#include <QRegularExpression>

#include <cmath>

namespace {
bool readNumber(const QVariant& field, double& value)
{
    QString text = field.toString().trimmed();
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    value = QLocale::c().toDouble(text, &ok);
    return ok && std::isfinite(value);
}
}

QStringList AlgorithmForm::builtInNames()
{
    return { QStringLiteral("meditation"), QStringLiteral("concentration"), QStringLiteral("mentalstate") };
}

QVariantMap AlgorithmForm::fields(const AlgorithmDefinition& d)
{
    const auto number = [](double value) { return QString::number(value, 'g', 6); };
    return { { QStringLiteral("kind"), AlgorithmDefinition::kindKey(d.kind) },
             { QStringLiteral("name"), d.name },
             { QStringLiteral("channels"), d.channels },
             { QStringLiteral("from"), number(d.from) },
             { QStringLiteral("to"), number(d.to) },
             { QStringLiteral("otherFrom"), number(d.otherFrom) },
             { QStringLiteral("otherTo"), number(d.otherTo) },
             { QStringLiteral("mode"), AlgorithmDefinition::modeKey(d.mode) },
             { QStringLiteral("formula"), d.formula },
             { QStringLiteral("visibleToControl"), d.visibleToControl } };
}

bool AlgorithmForm::read(const QVariantMap& fields, AlgorithmDefinition& d, QVariantMap& errors) const
{
    errors.clear();
    const auto setError = [&errors](const QString& key, const QString& message) {
        if (!message.isEmpty())
            errors.insert(key, message);
    };
    d = AlgorithmDefinition();
    d.kind = AlgorithmDefinition::kindOf(fields.value(QStringLiteral("kind")).toString());
    d.name = fields.value(QStringLiteral("name")).toString().trimmed();
    d.visibleToControl = fields.value(QStringLiteral("visibleToControl")).toBool();
    setError(QStringLiteral("name"), nameError(d.name));
    if (d.kind == AlgorithmDefinition::Formula) {
        d.formula = fields.value(QStringLiteral("formula")).toString().trimmed();
        setError(QStringLiteral("formula"), formulaError(d));
        return errors.isEmpty();
    }
    d.channels = fields.value(QStringLiteral("channels")).toString().trimmed();
    setError(QStringLiteral("channels"), channelsError(d.channels));
    readBand(fields, "from", "to", d.from, d.to, errors);
    if (d.kind == AlgorithmDefinition::BandRatio)
        readBand(fields, "otherFrom", "otherTo", d.otherFrom, d.otherTo, errors);
    else
        d.mode = AlgorithmDefinition::modeOf(fields.value(QStringLiteral("mode")).toString());
    return errors.isEmpty();
}

QString AlgorithmForm::nameError(const QString& name) const
{
    static const QRegularExpression usable(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (name.isEmpty())
        return QStringLiteral("Give the algorithm a name");
    if (!usable.match(name).hasMatch())
        return QStringLiteral("Use letters, digits and _ only, not starting with a digit");
    if (builtInNames().contains(name.toLower()))
        return QStringLiteral("%1 is a built-in value").arg(name);
    for (const AlgorithmDefinition& other : others) {
        if (other.name.compare(name, Qt::CaseInsensitive) == 0)
            return QStringLiteral("Another algorithm is called %1").arg(other.name);
    }
    return {};
}

// An entry is a channel name (any case) or a 0-based channel number.
QString AlgorithmForm::channelsError(const QString& channels) const
{
    if (channelNames.isEmpty() || channels.isEmpty())
        return {};
    QStringList unknown;
    for (const QString& part : channels.split(QLatin1Char(','))) {
        const QString entry = part.trimmed();
        bool isNumber = false;
        const int index = entry.toInt(&isNumber);
        const bool known = channelNames.contains(entry, Qt::CaseInsensitive)
                           || (isNumber && index >= 0 && index < channelNames.size());
        if (!known)
            unknown.append(entry.isEmpty() ? QStringLiteral("(empty)") : entry);
    }
    if (unknown.isEmpty())
        return {};
    return QStringLiteral("No channel %1 (there are %2)").arg(unknown.join(QStringLiteral(", ")),
                                                               channelNames.join(QStringLiteral(", ")));
}

QString AlgorithmForm::formulaError(const AlgorithmDefinition& d) const
{
    if (d.formula.isEmpty())
        return QStringLiteral("Write a formula");
    const FormulaExpression expression(d.formula, d.name);
    if (!expression.isValid())
        return expression.errorText();
    QStringList known = { QStringLiteral("meditation"), QStringLiteral("concentration") };
    for (const AlgorithmDefinition& other : others)
        known.append(other.name.toLower());
    for (const QString& name : expression.variableNames()) {
        if (name == d.name.toLower())
            return QStringLiteral("A formula cannot read its own result");
        if (!known.contains(name))
            return QStringLiteral("Unknown value %1: use another algorithm's name, meditation or concentration").arg(name);
    }
    QList<AlgorithmDefinition> all = others;
    all.append(d);
    QList<AlgorithmDefinition> ordered;
    if (!AlgorithmDefinition::runOrder(all, ordered))
        return QStringLiteral("Formulas cannot read each other in a circle");
    return {};
}

bool AlgorithmForm::readBand(const QVariantMap& fields, const char* fromKey, const char* toKey, double& from,
                             double& to, QVariantMap& errors)
{
    const QString fromName = QLatin1String(fromKey), toName = QLatin1String(toKey);
    if (!readNumber(fields.value(fromName), from) || from < 0) {
        errors.insert(fromName, QStringLiteral("A frequency of 0 Hz or more"));
        return false;
    }
    if (!readNumber(fields.value(toName), to) || to <= from) {
        errors.insert(toName, QStringLiteral("A frequency above %1 Hz").arg(from));
        return false;
    }
    return true;
}
