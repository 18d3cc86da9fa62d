#pragma once

#include <QAbstractListModel>
#include <QJsonObject>
#include <QList>

// The latest value of every custom algorithm, in the engine's order.
class AlgorithmListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role { NameRole = Qt::UserRole + 1, ValueRole };

    explicit AlgorithmListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // {"name", "value"} per algorithm, as the engine reports them.
    void setResults(const QList<QJsonObject>& results);
    // The latest value of the algorithm of that name; false when there is none.
    bool valueOf(const QString& name, double& value) const;

Q_SIGNALS:
    void countChanged();

private:
    QList<QPair<QString, double>> m_values;
};
