#pragma once

#include "app/ui/AlgorithmDefinition.h"

#include <QList>
#include <QStringList>
#include <QVariantMap>

// The add/edit form of a custom algorithm: turns the typed fields into a definition and says,
// field by field, what is wrong with them. Names must be usable inside formulas, unique, and not
// those of the built-in values; formulas must parse and read only known results.
class AlgorithmForm
{
public:
    // The other algorithms (all but the one being edited).
    QList<AlgorithmDefinition> others;
    // The montage's channel names; empty when no device runs (channels are then not checked).
    QStringList channelNames;

    // Fields: "kind" ("share", "ratio", "formula"), "name", "channels", "from", "to",
    // "otherFrom", "otherTo", "mode" ("max", "min", "mean"), "formula", "visibleToControl".
    // False with one message per refused field in `errors`.
    bool read(const QVariantMap& fields, AlgorithmDefinition& definition, QVariantMap& errors) const;

    // The fields of a definition, as read() takes them.
    static QVariantMap fields(const AlgorithmDefinition& definition);
    // Names a formula may read besides the algorithms.
    static QStringList builtInNames();

private:
    QString nameError(const QString& name) const;
    QString channelsError(const QString& channels) const;
    QString formulaError(const AlgorithmDefinition& definition) const;
    static bool readBand(const QVariantMap& fields, const char* fromKey, const char* toKey, double& from, double& to,
                         QVariantMap& errors);
};
