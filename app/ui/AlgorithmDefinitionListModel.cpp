#include "app/ui/AlgorithmDefinitionListModel.h"

#include "app/ui/AlgorithmListModel.h"

AlgorithmDefinitionListModel::AlgorithmDefinitionListModel(const AlgorithmListModel* values, QObject* parent)
    : QAbstractListModel(parent)
    , m_values(values)
{
    connect(values, &QAbstractItemModel::dataChanged, this, &AlgorithmDefinitionListModel::valuesChanged);
    connect(values, &QAbstractItemModel::modelReset, this, &AlgorithmDefinitionListModel::valuesChanged);
}

int AlgorithmDefinitionListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_definitions.size());
}

QVariant AlgorithmDefinitionListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_definitions.size())
        return {};
    const AlgorithmDefinition& definition = m_definitions.at(index.row());
    double value = 0;
    switch (role) {
    case NameRole: return definition.name;
    case KindRole: return AlgorithmDefinition::kindKey(definition.kind);
    case SummaryRole: return definition.summary();
    case VisibleToControlRole: return definition.visibleToControl;
    case ValueRole: return m_values->valueOf(definition.name, value) ? value : 0.0;
    case HasValueRole: return m_values->valueOf(definition.name, value);
    default: return {};
    }
}

QHash<int, QByteArray> AlgorithmDefinitionListModel::roleNames() const
{
    return { { NameRole, "name" },         { KindRole, "kind" },   { SummaryRole, "summary" },
             { VisibleToControlRole, "visibleToControl" }, { ValueRole, "value" }, { HasValueRole, "hasValue" } };
}

void AlgorithmDefinitionListModel::setDefinitions(const QList<AlgorithmDefinition>& definitions)
{
    if (definitions.size() == m_definitions.size()) {
        m_definitions = definitions;
        if (!m_definitions.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_definitions.size()) - 1));
        return;
    }
    beginResetModel();
    m_definitions = definitions;
    endResetModel();
    Q_EMIT countChanged();
}

void AlgorithmDefinitionListModel::valuesChanged()
{
    if (!m_definitions.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_definitions.size()) - 1), { ValueRole, HasValueRole });
}
