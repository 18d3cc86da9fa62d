#include "app/ui/ChannelListModel.h"

namespace {
// Thresholds of the signal quality shown to the person wearing the headset, in percent.
constexpr int BadBelow = 20;
constexpr int AverageBelow = 90;
constexpr int ChannelsInSpectrumAtStart = 2;
}

ChannelListModel::ChannelListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int ChannelListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant ChannelListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_names.size())
        return {};
    const int row = index.row();
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return m_names.at(row);
    case VisibleRole:
        return m_visible.at(row);
    case InSpectrumRole:
        return m_inSpectrum.at(row);
    case QualityRole:
        return m_quality.at(row);
    case QualityLevelRole:
        return levelName(levelOf(m_quality.at(row)));
    default:
        return {};
    }
}

QHash<int, QByteArray> ChannelListModel::roleNames() const
{
    return { { NameRole, "name" },
             { VisibleRole, "visible" },
             { InSpectrumRole, "inSpectrum" },
             { QualityRole, "quality" },
             { QualityLevelRole, "qualityLevel" } };
}

void ChannelListModel::setNames(const QStringList& names)
{
    if (names == m_names)
        return;
    beginResetModel();
    m_names = names;
    m_visible = QList<bool>(names.size(), true);
    m_inSpectrum = QList<bool>(names.size(), false);
    for (int i = 0; i < std::min<int>(ChannelsInSpectrumAtStart, int(names.size())); ++i)
        m_inSpectrum[i] = true;
    m_quality = QList<int>(names.size(), -1);
    endResetModel();
    Q_EMIT countChanged();
    Q_EMIT visibilityChanged();
    Q_EMIT spectrumSelectionChanged();
    Q_EMIT qualityChanged();
}

void ChannelListModel::setQuality(const QList<int>& quality)
{
    if (m_names.isEmpty())
        return;
    bool changed = false;
    for (int i = 0; i < m_quality.size(); ++i) {
        const int value = i < quality.size() ? quality.at(i) : -1;
        if (m_quality.at(i) != value) {
            m_quality[i] = value;
            changed = true;
        }
    }
    if (!changed)
        return;
    Q_EMIT dataChanged(index(0), index(int(m_names.size()) - 1), { QualityRole, QualityLevelRole });
    Q_EMIT qualityChanged();
}

ChannelListModel::QualityLevel ChannelListModel::levelOf(int quality)
{
    if (quality < 0)
        return Unknown;
    if (quality < BadBelow)
        return Bad;
    if (quality < AverageBelow)
        return Average;
    return Good;
}

QString ChannelListModel::levelName(QualityLevel level)
{
    switch (level) {
    case Bad:
        return QStringLiteral("bad");
    case Average:
        return QStringLiteral("average");
    case Good:
        return QStringLiteral("good");
    default:
        return QStringLiteral("unknown");
    }
}

void ChannelListModel::setVisible(int channel, bool visible)
{
    if (channel < 0 || channel >= m_visible.size() || m_visible.at(channel) == visible)
        return;
    m_visible[channel] = visible;
    Q_EMIT dataChanged(index(channel), index(channel), { VisibleRole });
    Q_EMIT visibilityChanged();
}

void ChannelListModel::setAllVisible(bool visible)
{
    for (int i = 0; i < m_visible.size(); ++i)
        setVisible(i, visible);
}

void ChannelListModel::setInSpectrum(int channel, bool selected)
{
    if (channel < 0 || channel >= m_inSpectrum.size() || m_inSpectrum.at(channel) == selected)
        return;
    m_inSpectrum[channel] = selected;
    Q_EMIT dataChanged(index(channel), index(channel), { InSpectrumRole });
    Q_EMIT spectrumSelectionChanged();
}

QList<int> ChannelListModel::visibleChannels() const
{
    QList<int> channels;
    for (int i = 0; i < m_visible.size(); ++i) {
        if (m_visible.at(i))
            channels.append(i);
    }
    return channels;
}

QList<int> ChannelListModel::spectrumChannels() const
{
    QList<int> channels;
    for (int i = 0; i < m_inSpectrum.size(); ++i) {
        if (m_inSpectrum.at(i))
            channels.append(i);
    }
    return channels;
}
