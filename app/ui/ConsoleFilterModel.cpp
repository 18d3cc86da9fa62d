#include "app/ui/ConsoleFilterModel.h"

#include "app/ui/ConsoleItemModel.h"

ConsoleFilterModel::ConsoleFilterModel(ConsoleItemModel* items, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_items(items)
{
    setSourceModel(items);
}

void ConsoleFilterModel::setType(const std::optional<QString>& type)
{
    if (type == m_type)
        return;
    m_type = type;
    invalidateRowsFilter();
}

void ConsoleFilterModel::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    invalidateRowsFilter();
}

bool ConsoleFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex&) const
{
    const ConsoleItem& item = m_items->at(sourceRow);
    if (m_type && item.type != *m_type)
        return false;
    return m_text.isEmpty() || item.line().contains(m_text, Qt::CaseInsensitive);
}
