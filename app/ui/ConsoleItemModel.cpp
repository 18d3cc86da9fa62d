#include "app/ui/ConsoleItemModel.h"

#include <algorithm>

ConsoleItem ConsoleItem::parse(const QString& type, const QString& line)
{
    QString rest = line;
    while (rest.endsWith(QLatin1Char('\n')) || rest.endsWith(QLatin1Char('\r')))
        rest.chop(1);
    ConsoleItem item;
    item.type = type;
    const qsizetype space = rest.indexOf(QLatin1Char(' '));
    item.time = space < 0 ? QString() : rest.left(space);
    rest = rest.mid(space + 1);
    const QString prefix = type + QLatin1Char(' ');
    item.text = !type.isEmpty() && rest.startsWith(prefix) ? rest.mid(prefix.size()) : rest;
    return item;
}

QString ConsoleItem::line() const
{
    return type.isEmpty() ? time + QLatin1Char(' ') + text : time + QLatin1Char(' ') + type + QLatin1Char(' ') + text;
}

ConsoleItemModel::ConsoleItemModel(int capacity, QObject* parent)
    : QAbstractListModel(parent)
    , m_capacity(qMax(capacity, 1))
{
}

int ConsoleItemModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_items.size());
}

QVariant ConsoleItemModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_items.size()))
        return {};
    const ConsoleItem& item = m_items[index.row()];
    switch (role) {
    case TimeRole:
        return item.time;
    case TypeRole:
        return item.type;
    case TextRole:
    case Qt::DisplayRole:
        return item.text;
    case LineRole:
        return item.line();
    case SelectedRole:
        return item.selected;
    default:
        return {};
    }
}

QHash<int, QByteArray> ConsoleItemModel::roleNames() const
{
    return { { TimeRole, "time" }, { TypeRole, "type" }, { TextRole, "text" }, { LineRole, "line" },
             { SelectedRole, "selected" } };
}

void ConsoleItemModel::append(QList<ConsoleItem> items)
{
    if (items.isEmpty())
        return;
    // Of a batch larger than the whole list only its newest part can stay.
    if (items.size() > m_capacity)
        items.erase(items.begin(), items.end() - m_capacity);
    const int overflow = int(m_items.size() + items.size()) - m_capacity;
    const int selectedBefore = m_selectedCount;
    if (overflow > 0) {
        beginRemoveRows({}, 0, overflow - 1);
        for (int i = 0; i < overflow; ++i)
            m_selectedCount -= m_items[i].selected;
        m_items.erase(m_items.begin(), m_items.begin() + overflow);
        endRemoveRows();
    }
    bool newType = false;
    for (ConsoleItem& item : items) {
        item.serial = m_nextSerial++;
        item.selected = false;
        if (!m_types.contains(item.type)) {
            m_types.append(item.type);
            newType = true;
        }
    }
    const int first = int(m_items.size());
    beginInsertRows({}, first, first + int(items.size()) - 1);
    m_items.insert(m_items.end(), items.cbegin(), items.cend());
    endInsertRows();
    if (newType)
        Q_EMIT typesChanged();
    if (selectedBefore != m_selectedCount)
        Q_EMIT selectedCountChanged();
}

void ConsoleItemModel::clear()
{
    beginResetModel();
    m_items.clear();
    endResetModel();
    if (m_selectedCount) {
        m_selectedCount = 0;
        Q_EMIT selectedCountChanged();
    }
}

int ConsoleItemModel::rowOfSerial(quint64 serial) const
{
    // Serials grow along the list, so the row is found by bisection.
    const auto found = std::lower_bound(m_items.cbegin(), m_items.cend(), serial,
                                        [](const ConsoleItem& item, quint64 value) { return item.serial < value; });
    return found != m_items.cend() && found->serial == serial ? int(found - m_items.cbegin()) : -1;
}

void ConsoleItemModel::setSelected(int row, bool selected)
{
    if (row < 0 || row >= int(m_items.size()) || m_items[row].selected == selected)
        return;
    m_items[row].selected = selected;
    m_selectedCount += selected ? 1 : -1;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, { SelectedRole });
    Q_EMIT selectedCountChanged();
}

void ConsoleItemModel::clearSelection()
{
    for (int row = 0; row < int(m_items.size()) && m_selectedCount > 0; ++row)
        setSelected(row, false);
}
