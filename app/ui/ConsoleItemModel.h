#pragma once

#include <QAbstractListModel>
#include <deque>
#include <QStringList>

// One console item as the window lists it.
struct ConsoleItem
{
    QString time; // "hh:mm:ss.zzz"
    QString type; // empty for general lines
    QString text;
    quint64 serial = 0;
    bool selected = false;

    // The console's kept form: "hh:mm:ss.zzz [type ]text", trailing CR LF allowed.
    static ConsoleItem parse(const QString& type, const QString& line);
    QString line() const;
};

// The console items the window keeps, oldest first. Bounded: appending beyond the capacity
// drops the oldest, so a long session never grows without limit.
class ConsoleItemModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role { TimeRole = Qt::UserRole + 1, TypeRole, TextRole, LineRole, SelectedRole };

    explicit ConsoleItemModel(int capacity, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int capacity() const { return m_capacity; }
    // Appends a batch with one insertion (and at most one removal) for the views.
    void append(QList<ConsoleItem> items);
    void clear();
    const ConsoleItem& at(int row) const { return m_items[row]; }
    // The row of the item with this serial, -1 when it was dropped.
    int rowOfSerial(quint64 serial) const;

    void setSelected(int row, bool selected);
    void clearSelection();
    int selectedCount() const { return m_selectedCount; }

    // Every type seen since the start (also of dropped items), in order of first appearance.
    QStringList types() const { return m_types; }

Q_SIGNALS:
    void typesChanged();
    void selectedCountChanged();

private:
    int m_capacity;
    std::deque<ConsoleItem> m_items;
    QStringList m_types;
    quint64 m_nextSerial = 1;
    int m_selectedCount = 0;
};
