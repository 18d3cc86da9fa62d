#pragma once

#include <QAbstractListModel>
#include <QDateTime>

#include <deque>

// One command request the interface answered.
struct ApiRequest
{
    QDateTime time;
    QString client; // "address:port"; empty for the program's own messages
    QString command;
    bool result = false;
    QString error;
};

// The last requests, newest first, at most `capacity` of them.
class ApiRequestModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role { TimeRole = Qt::UserRole + 1, ClientRole, CommandRole, ResultRole, ErrorRole };

    explicit ApiRequestModel(int capacity, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Adds a batch given oldest first; one insertion and at most one removal for the views.
    void add(QList<ApiRequest> requests);
    const ApiRequest& at(int row) const { return m_requests[row]; }

private:
    int m_capacity;
    std::deque<ApiRequest> m_requests; // newest first
};
