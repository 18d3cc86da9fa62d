#include "app/ui/MontageChannelListModel.h"

MontageChannelListModel::MontageChannelListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int MontageChannelListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_channels.size());
}

QString MontageChannelListModel::numberText(double value)
{
    return QString::number(value, 'g', 6);
}

QVariant MontageChannelListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_channels.size())
        return {};
    const MontageChannel& channel = m_channels.at(index.row());
    const auto cutoff = [](double value) { return value > 0 ? numberText(value) : QString(); };
    switch (role) {
    case NameRole: return channel.name;
    case TypeRole: return m_typeNames.value(channel.userTag, m_typeNames.value(0));
    case InputRole: return channel.group1;
    case ReferenceRole: return channel.group2;
    case HighPassRole: return cutoff(channel.highPass);
    case LowPassRole: return cutoff(channel.lowPass);
    case BandStopRole: return cutoff(channel.bandStop);
    case ScaleRole: return numberText(channel.scale);
    case OffsetRole: return numberText(channel.offset);
    case VisualScaleRole: return numberText(channel.visualScale);
    default: return {};
    }
}

QHash<int, QByteArray> MontageChannelListModel::roleNames() const
{
    return { { NameRole, "name" },         { TypeRole, "type" },         { InputRole, "input" },
             { ReferenceRole, "reference" }, { HighPassRole, "highPass" }, { LowPassRole, "lowPass" },
             { BandStopRole, "bandStop" }, { ScaleRole, "scale" },       { OffsetRole, "offset" },
             { VisualScaleRole, "visualScale" } };
}

void MontageChannelListModel::setChannels(const QList<MontageChannel>& channels, const QStringList& typeNames)
{
    m_typeNames = typeNames;
    if (channels.size() != m_channels.size()) {
        beginResetModel();
        m_channels = channels;
        endResetModel();
        Q_EMIT countChanged();
        return;
    }
    m_channels = channels;
    if (!m_channels.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_channels.size()) - 1));
}
