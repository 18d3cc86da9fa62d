#pragma once

#include "app/ui/AlgorithmDefinitionListModel.h"
#include "app/ui/AlgorithmListModel.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

class CortexCore;
class OrvexModel;

// The user's custom algorithms: added, edited and removed through a checked form, run by the
// engine with their live values shown, offered to clients when marked visible to control, and
// kept in the CustomAlgorithms setting across runs.
class AlgorithmsController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(AlgorithmDefinitionListModel* list READ list CONSTANT)
    // Field name -> why the last save() refused it.
    Q_PROPERTY(QVariantMap errors READ errors NOTIFY errorsChanged)
    // Why the last remove() or visibility change was refused.
    Q_PROPERTY(QString error READ error NOTIFY errorsChanged)
    Q_PROPERTY(QStringList channelNames READ channelNames NOTIFY channelNamesChanged)
public:
    // `values`: the live values the indices screen keeps, shown beside each definition.
    AlgorithmsController(OrvexModel* model, AlgorithmListModel* values, QObject* parent = nullptr);

    AlgorithmDefinitionListModel* list() { return &m_list; }
    QVariantMap errors() const { return m_errors; }
    QString error() const { return m_error; }
    QStringList channelNames() const;

    // The form's fields for a row, or for a new algorithm of a kind when row is -1.
    Q_INVOKABLE QVariantMap fields(int row, const QString& kind = QString()) const;
    // Adds (row -1) or replaces an algorithm; false with errors() set when a field is refused.
    Q_INVOKABLE bool save(int row, const QVariantMap& fields);
    // Refused while a formula reads the algorithm's result.
    Q_INVOKABLE bool remove(int row);
    Q_INVOKABLE bool setVisibleToControl(int row, bool visible);
    Q_INVOKABLE void clearErrors();

Q_SIGNALS:
    void errorsChanged();
    void channelNamesChanged();

private:
    // Keeps the definitions in the list and the setting, which the engine's runner follows.
    void store(const QList<AlgorithmDefinition>& definitions);
    void setDefinitions(const QList<AlgorithmDefinition>& definitions);
    void loadFromSettings();
    void setErrors(const QVariantMap& errors, const QString& error = QString());

    OrvexModel* m_model;
    CortexCore* m_engine;
    AlgorithmDefinitionListModel m_list;
    QVariantMap m_errors;
    QString m_error;
    QString m_stored; // the setting's text as last written or read here
};
