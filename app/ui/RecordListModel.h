#pragma once

#include "app/ui/RecordEntry.h"

#include <QAbstractListModel>
#include <QList>

// The records of the records folder, newest first.
class RecordListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role {
        PathRole = Qt::UserRole + 1,
        NameRole,
        DateTextRole,     // "yyyy-MM-dd hh:mm:ss"
        DurationTextRole, // "hh:mm:ss"
        ChannelsRole,
        RateRole,         // Hz
        SizeTextRole,
        AnnotationsRole,  // count
        FilesRole,        // file names, the main file first
        ReadableRole,
    };

    explicit RecordListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setRecords(const QList<RecordEntry>& records);
    // An empty entry outside the list.
    RecordEntry recordAt(int row) const;
    Q_INVOKABLE int rowOf(const QString& path) const;

Q_SIGNALS:
    void countChanged();

private:
    QList<RecordEntry> m_records;
};
