#include "app/ui/AnnotationListModel.h"

#include "app/ui/RecordingController.h"

AnnotationListModel::AnnotationListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int AnnotationListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_items.size());
}

QVariant AnnotationListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_items.size())
        return {};
    const auto& item = m_items.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case TextRole:
        return item.first;
    case OnsetMsRole:
        return item.second;
    case OnsetTextRole:
        return RecordingController::formatDuration(item.second / 1000.0);
    default:
        return {};
    }
}

QHash<int, QByteArray> AnnotationListModel::roleNames() const
{
    return { { TextRole, "text" }, { OnsetMsRole, "onsetMs" }, { OnsetTextRole, "onsetText" } };
}

void AnnotationListModel::append(const QString& text, int onsetMs)
{
    beginInsertRows({}, int(m_items.size()), int(m_items.size()));
    m_items.append({ text, onsetMs });
    endInsertRows();
    Q_EMIT countChanged();
}

void AnnotationListModel::clear()
{
    beginResetModel();
    m_items.clear();
    endResetModel();
    Q_EMIT countChanged();
}
