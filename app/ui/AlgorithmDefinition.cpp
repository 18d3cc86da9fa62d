#include "app/ui/AlgorithmDefinition.h"

#include "dsp/CustomMathAlgorithm.h"
#include "dsp/CustomRhythmAlgorithm.h"
#include "dsp/CustomSpecialRhythmAlgorithm.h"
#include "dsp/FormulaExpression.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {
const QStringList KindKeys = { QStringLiteral("share"), QStringLiteral("ratio"), QStringLiteral("formula") };
// In CalculationMode order.
const QStringList ModeKeys = { QStringLiteral("max"), QStringLiteral("min"), QStringLiteral("mean") };

QString hz(double value)
{
    return QString::number(value, 'g', 6);
}
}

QString AlgorithmDefinition::kindKey(Kind kind) { return KindKeys.value(kind); }

AlgorithmDefinition::Kind AlgorithmDefinition::kindOf(const QString& key)
{
    return Kind(qMax(0, KindKeys.indexOf(key)));
}

QString AlgorithmDefinition::modeKey(int mode) { return ModeKeys.value(mode, ModeKeys.last()); }

int AlgorithmDefinition::modeOf(const QString& key)
{
    const int mode = int(ModeKeys.indexOf(key));
    return mode < 0 ? CustomRhythmAlgorithm::Calculate_Average : mode;
}

QJsonObject AlgorithmDefinition::toJson() const
{
    QJsonObject json { { QStringLiteral("kind"), kindKey(kind) },
                       { QStringLiteral("name"), name },
                       { QStringLiteral("visibleToControl"), visibleToControl } };
    if (kind == Formula) {
        json.insert(QStringLiteral("formula"), formula);
        return json;
    }
    json.insert(QStringLiteral("channels"), channels);
    json.insert(QStringLiteral("from"), from);
    json.insert(QStringLiteral("to"), to);
    if (kind == BandRatio) {
        json.insert(QStringLiteral("otherFrom"), otherFrom);
        json.insert(QStringLiteral("otherTo"), otherTo);
    } else {
        json.insert(QStringLiteral("mode"), modeKey(mode));
    }
    return json;
}

AlgorithmDefinition AlgorithmDefinition::fromJson(const QJsonObject& json)
{
    AlgorithmDefinition d;
    d.kind = kindOf(json.value(QStringLiteral("kind")).toString());
    d.name = json.value(QStringLiteral("name")).toString();
    d.visibleToControl = json.value(QStringLiteral("visibleToControl")).toBool();
    d.formula = json.value(QStringLiteral("formula")).toString();
    d.channels = json.value(QStringLiteral("channels")).toString();
    d.from = json.value(QStringLiteral("from")).toDouble(d.from);
    d.to = json.value(QStringLiteral("to")).toDouble(d.to);
    d.otherFrom = json.value(QStringLiteral("otherFrom")).toDouble(d.otherFrom);
    d.otherTo = json.value(QStringLiteral("otherTo")).toDouble(d.otherTo);
    d.mode = modeOf(json.value(QStringLiteral("mode")).toString());
    return d;
}

QString AlgorithmDefinition::listToText(const QList<AlgorithmDefinition>& list)
{
    QJsonArray array;
    for (const AlgorithmDefinition& definition : list)
        array.append(definition.toJson());
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

// Entries without a name, and repeated names, are dropped: the engine knows algorithms by name.
QList<AlgorithmDefinition> AlgorithmDefinition::listFromText(const QString& text)
{
    QList<AlgorithmDefinition> list;
    QStringList names;
    for (const QJsonValue& value : QJsonDocument::fromJson(text.toUtf8()).array()) {
        const AlgorithmDefinition definition = fromJson(value.toObject());
        if (definition.name.isEmpty() || names.contains(definition.name.toLower()))
            continue;
        names.append(definition.name.toLower());
        list.append(definition);
    }
    return list;
}

CustomBCIAlgorithm* AlgorithmDefinition::create() const
{
    CustomBCIAlgorithm* algorithm = nullptr;
    if (kind == Formula)
        algorithm = new CustomMathAlgorithm(name, formula);
    else if (kind == BandRatio)
        algorithm = new CustomSpecialRhythmAlgorithm(name, from, to, otherFrom, otherTo, channels);
    else
        algorithm = new CustomRhythmAlgorithm(name, QStringLiteral("#F00"), from, to, channels,
                                              CustomRhythmAlgorithm::CalculationMode(mode));
    algorithm->setVisibleToControl(visibleToControl);
    return algorithm;
}

QString AlgorithmDefinition::summary() const
{
    if (kind == Formula)
        return formula;
    const QString where = channels.trimmed().isEmpty() ? QStringLiteral("all channels") : channels.trimmed();
    if (kind == BandRatio)
        return QStringLiteral("%1-%2 Hz over %3-%4 Hz, %5").arg(hz(from), hz(to), hz(otherFrom), hz(otherTo), where);
    return QStringLiteral("%1-%2 Hz share, %3, %4").arg(hz(from), hz(to), where, modeKey(mode));
}

QStringList AlgorithmDefinition::reads() const
{
    return kind == Formula ? FormulaExpression(formula).variableNames() : QStringList();
}

bool AlgorithmDefinition::runOrder(const QList<AlgorithmDefinition>& list, QList<AlgorithmDefinition>& ordered)
{
    ordered.clear();
    QStringList pendingNames;
    for (const AlgorithmDefinition& definition : list)
        pendingNames.append(definition.name.toLower());
    QList<AlgorithmDefinition> pending = list;
    // Each pass places whatever reads nothing still pending; a pass that places nothing is a circle.
    while (!pending.isEmpty()) {
        bool placed = false;
        for (qsizetype i = 0; i < pending.size(); ++i) {
            const QStringList reads = pending[i].reads();
            const bool ready = std::none_of(reads.begin(), reads.end(),
                                            [&](const QString& name) { return pendingNames.contains(name); });
            if (!ready)
                continue;
            ordered.append(pending.takeAt(i));
            pendingNames.removeAt(i);
            placed = true;
            --i;
        }
        if (!placed)
            return false;
    }
    return true;
}
