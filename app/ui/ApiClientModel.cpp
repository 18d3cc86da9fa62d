#include "app/ui/ApiClientModel.h"

int ApiClientModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_clients.size());
}

QVariant ApiClientModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_clients.size())
        return {};
    const Client& client = m_clients[index.row()];
    switch (role) {
    case AddressRole:
    case Qt::DisplayRole:
        return client.address;
    case SinceRole:
        return client.since.toString(QStringLiteral("hh:mm:ss"));
    case RequestsRole:
        return client.requests;
    default:
        return {};
    }
}

QHash<int, QByteArray> ApiClientModel::roleNames() const
{
    return { { AddressRole, "address" }, { SinceRole, "since" }, { RequestsRole, "requests" } };
}

void ApiClientModel::add(QWebSocket* socket, const QString& address)
{
    beginInsertRows({}, int(m_clients.size()), int(m_clients.size()));
    m_clients.append({ socket, address, QDateTime::currentDateTime(), 0 });
    endInsertRows();
    Q_EMIT countChanged();
}

void ApiClientModel::remove(QWebSocket* socket)
{
    for (int row = 0; row < m_clients.size(); ++row) {
        if (m_clients[row].socket == socket) {
            beginRemoveRows({}, row, row);
            m_clients.removeAt(row);
            endRemoveRows();
            Q_EMIT countChanged();
            return;
        }
    }
}

void ApiClientModel::countRequests(const QString& address, int count)
{
    for (int row = 0; row < m_clients.size(); ++row) {
        if (m_clients[row].address == address) {
            m_clients[row].requests += count;
            Q_EMIT dataChanged(index(row), index(row), { RequestsRole });
            return;
        }
    }
}
