#include "app/ui/AlgorithmListModel.h"

AlgorithmListModel::AlgorithmListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int AlgorithmListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_values.size());
}

QVariant AlgorithmListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_values.size())
        return {};
    if (role == NameRole || role == Qt::DisplayRole)
        return m_values.at(index.row()).first;
    if (role == ValueRole)
        return m_values.at(index.row()).second;
    return {};
}

QHash<int, QByteArray> AlgorithmListModel::roleNames() const
{
    return { { NameRole, "name" }, { ValueRole, "value" } };
}

void AlgorithmListModel::setResults(const QList<QJsonObject>& results)
{
    QList<QPair<QString, double>> values;
    values.reserve(results.size());
    for (const QJsonObject& result : results)
        values.append({ result.value(QStringLiteral("name")).toString(), result.value(QStringLiteral("value")).toDouble() });
    if (values.size() != m_values.size()) {
        beginResetModel();
        m_values = values;
        endResetModel();
        Q_EMIT countChanged();
        return;
    }
    m_values = values;
    if (!m_values.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_values.size()) - 1));
}

bool AlgorithmListModel::valueOf(const QString& name, double& value) const
{
    for (const auto& entry : m_values) {
        if (entry.first == name) {
            value = entry.second;
            return true;
        }
    }
    return false;
}
