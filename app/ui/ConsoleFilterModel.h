#pragma once

#include <QSortFilterProxyModel>

#include <optional>

class ConsoleItemModel;

// The console items a person asked to see: all or one type, and those containing a text
// (ignoring case).
class ConsoleFilterModel : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    explicit ConsoleFilterModel(ConsoleItemModel* items, QObject* parent = nullptr);

    // No type shows every type; otherwise only items of `type` ("" for general lines).
    void setType(const std::optional<QString>& type);
    void setText(const QString& text);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    ConsoleItemModel* m_items;
    std::optional<QString> m_type;
    QString m_text;
};
