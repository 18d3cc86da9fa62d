#pragma once

#include "app/ui/AlgorithmDefinition.h"

#include <QAbstractListModel>
#include <QList>

class AlgorithmListModel;

// The user's algorithms, one row each, with the latest value the engine reported for it.
class AlgorithmDefinitionListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role { NameRole = Qt::UserRole + 1, KindRole, SummaryRole, VisibleToControlRole, ValueRole, HasValueRole };

    // Values come from `values`, which must outlive this model.
    explicit AlgorithmDefinitionListModel(const AlgorithmListModel* values, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setDefinitions(const QList<AlgorithmDefinition>& definitions);
    const QList<AlgorithmDefinition>& definitions() const { return m_definitions; }

Q_SIGNALS:
    void countChanged();

private:
    void valuesChanged();

    const AlgorithmListModel* m_values;
    QList<AlgorithmDefinition> m_definitions;
};
