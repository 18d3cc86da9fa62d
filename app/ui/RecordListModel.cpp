#include "app/ui/RecordListModel.h"

#include "app/ui/RecordingController.h"

#include <QLocale>

RecordListModel::RecordListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int RecordListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_records.size());
}

QVariant RecordListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_records.size())
        return {};
    const RecordEntry& r = m_records.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return r.name;
    case PathRole:
        return r.path;
    case DateTextRole:
        return r.start.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    case DurationTextRole:
        return RecordingController::formatDuration(r.durationSeconds);
    case ChannelsRole:
        return r.channelCount;
    case RateRole:
        return r.samplingRate;
    case SizeTextRole:
        return QLocale::c().formattedDataSize(r.sizeBytes, 1, QLocale::DataSizeSIFormat);
    case AnnotationsRole:
        return r.annotationCount;
    case FilesRole:
        return r.files;
    case ReadableRole:
        return r.readable;
    default:
        return {};
    }
}

QHash<int, QByteArray> RecordListModel::roleNames() const
{
    return { { PathRole, "path" },         { NameRole, "name" },     { DateTextRole, "dateText" },
             { DurationTextRole, "durationText" }, { ChannelsRole, "channels" }, { RateRole, "rate" },
             { SizeTextRole, "sizeText" }, { AnnotationsRole, "annotations" }, { FilesRole, "files" },
             { ReadableRole, "readable" } };
}

void RecordListModel::setRecords(const QList<RecordEntry>& records)
{
    beginResetModel();
    m_records = records;
    endResetModel();
    Q_EMIT countChanged();
}

RecordEntry RecordListModel::recordAt(int row) const
{
    return row >= 0 && row < m_records.size() ? m_records.at(row) : RecordEntry();
}

int RecordListModel::rowOf(const QString& path) const
{
    for (int row = 0; row < m_records.size(); ++row) {
        if (m_records.at(row).path == path)
            return row;
    }
    return -1;
}
