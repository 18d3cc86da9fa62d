#include "app/ui/RhythmListModel.h"

#include <QVariantList>

RhythmListModel::RhythmListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int RhythmListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant RhythmListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_names.size())
        return {};
    const StandartRhythmSample rhythms = rhythmsAt(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return m_names.at(index.row());
    case DeltaRole:
        return double(rhythms.delta);
    case ThetaRole:
        return double(rhythms.theta);
    case AlphaRole:
        return double(rhythms.alpha);
    case BetaRole:
        return double(rhythms.beta);
    case GammaRole:
        return double(rhythms.gamma);
    case SharesRole:
        return QVariantList { rhythms.delta, rhythms.theta, rhythms.alpha, rhythms.beta, rhythms.gamma };
    default:
        return {};
    }
}

QHash<int, QByteArray> RhythmListModel::roleNames() const
{
    return { { NameRole, "name" }, { DeltaRole, "delta" }, { ThetaRole, "theta" }, { AlphaRole, "alpha" },
             { BetaRole, "beta" }, { GammaRole, "gamma" }, { SharesRole, "shares" } };
}

QStringList RhythmListModel::rhythmNames()
{
    return { QStringLiteral("delta"), QStringLiteral("theta"), QStringLiteral("alpha"), QStringLiteral("beta"),
             QStringLiteral("gamma") };
}

void RhythmListModel::setNames(const QStringList& names)
{
    if (names == m_names)
        return;
    beginResetModel();
    m_names = names;
    m_rhythms.clear();
    endResetModel();
    Q_EMIT countChanged();
}

void RhythmListModel::setRhythms(const QList<StandartRhythmSample>& rhythms)
{
    m_rhythms = rhythms;
    if (!m_names.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_names.size()) - 1));
}

StandartRhythmSample RhythmListModel::rhythmsAt(int row) const
{
    return row >= 0 && row < m_rhythms.size() ? m_rhythms.at(row) : StandartRhythmSample();
}
