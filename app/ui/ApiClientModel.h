#pragma once

#include <QAbstractListModel>
#include <QDateTime>

class QWebSocket;

// The WebSocket clients connected now, in order of connection, with how many requests each
// has made since.
class ApiClientModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role { AddressRole = Qt::UserRole + 1, SinceRole, RequestsRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void add(QWebSocket* socket, const QString& address);
    void remove(QWebSocket* socket);
    void countRequests(const QString& address, int count);
    QString addressAt(int row) const { return m_clients[row].address; }

Q_SIGNALS:
    void countChanged();

private:
    struct Client
    {
        QWebSocket* socket = nullptr; // identity only, never dereferenced
        QString address;
        QDateTime since;
        int requests = 0;
    };
    QList<Client> m_clients;
};
