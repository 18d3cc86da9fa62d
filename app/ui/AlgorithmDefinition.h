#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

class CustomBCIAlgorithm;

// A custom algorithm as the user defines it and the settings keep it: the share of a band
// over chosen channels, the ratio of two bands' power, or a formula over other results.
// The engine gets a fresh algorithm object made from it (create()).
struct AlgorithmDefinition
{
    enum Kind { BandShare, BandRatio, Formula };

    Kind kind = BandShare;
    QString name;
    QString channels;       // names or 0-based indexes, comma-separated; empty = all
    double from = 8;        // the band; for a ratio, the numerator's band
    double to = 14;
    double otherFrom = 14;  // a ratio's denominator band
    double otherTo = 35;
    int mode = 2;           // CustomRhythmAlgorithm::CalculationMode; mean by default
    QString formula;
    bool visibleToControl = false;

    static QString kindKey(Kind kind);
    static Kind kindOf(const QString& key);
    static QString modeKey(int mode);
    static int modeOf(const QString& key);

    QJsonObject toJson() const;
    static AlgorithmDefinition fromJson(const QJsonObject& json);
    static QString listToText(const QList<AlgorithmDefinition>& list);
    static QList<AlgorithmDefinition> listFromText(const QString& text);

    // A new engine object; the caller owns it.
    CustomBCIAlgorithm* create() const;
    // One line for the list: "8-14 Hz share, O1, O2, mean".
    QString summary() const;
    // Lower-cased names a formula reads; empty for the band kinds.
    QStringList reads() const;

    // Formulas after the results they read, so every step uses this step's values. False when
    // formulas read each other in a circle (`ordered` then holds what could be ordered).
    static bool runOrder(const QList<AlgorithmDefinition>& list, QList<AlgorithmDefinition>& ordered);
};
