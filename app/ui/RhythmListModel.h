#pragma once

#include "core/StandartRhythmSample.h"

#include <QAbstractListModel>
#include <QStringList>

// The five rhythm shares (percent of the spectrum's total amplitude) of each channel.
class RhythmListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    Q_PROPERTY(QStringList rhythmNames READ rhythmNames CONSTANT)
public:
    enum Role { NameRole = Qt::UserRole + 1, DeltaRole, ThetaRole, AlphaRole, BetaRole, GammaRole, SharesRole };

    explicit RhythmListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    static QStringList rhythmNames();
    void setNames(const QStringList& names);
    void setRhythms(const QList<StandartRhythmSample>& rhythms);
    StandartRhythmSample rhythmsAt(int row) const;

Q_SIGNALS:
    void countChanged();

private:
    QStringList m_names;
    QList<StandartRhythmSample> m_rhythms;
};
