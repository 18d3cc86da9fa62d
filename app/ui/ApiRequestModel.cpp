#include "app/ui/ApiRequestModel.h"

ApiRequestModel::ApiRequestModel(int capacity, QObject* parent)
    : QAbstractListModel(parent)
    , m_capacity(qMax(capacity, 1))
{
}

int ApiRequestModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_requests.size());
}

QVariant ApiRequestModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_requests.size()))
        return {};
    const ApiRequest& request = m_requests[index.row()];
    switch (role) {
    case TimeRole:
        return request.time.toString(QStringLiteral("hh:mm:ss.zzz"));
    case ClientRole:
        return request.client.isEmpty() ? tr("this program") : request.client;
    case CommandRole:
    case Qt::DisplayRole:
        return request.command;
    case ResultRole:
        return request.result;
    case ErrorRole:
        return request.error;
    default:
        return {};
    }
}

QHash<int, QByteArray> ApiRequestModel::roleNames() const
{
    return { { TimeRole, "time" }, { ClientRole, "client" }, { CommandRole, "command" }, { ResultRole, "result" },
             { ErrorRole, "error" } };
}

void ApiRequestModel::add(QList<ApiRequest> requests)
{
    if (requests.isEmpty())
        return;
    if (requests.size() > m_capacity)
        requests.erase(requests.begin(), requests.end() - m_capacity);
    const int overflow = int(m_requests.size() + requests.size()) - m_capacity;
    if (overflow > 0) {
        beginRemoveRows({}, int(m_requests.size()) - overflow, int(m_requests.size()) - 1);
        m_requests.erase(m_requests.end() - overflow, m_requests.end());
        endRemoveRows();
    }
    beginInsertRows({}, 0, int(requests.size()) - 1);
    m_requests.insert(m_requests.begin(), requests.crbegin(), requests.crend());
    endInsertRows();
}
