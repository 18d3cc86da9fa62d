#pragma once

#include "dsp/MontageChannel.h"

#include <QAbstractListModel>
#include <QList>
#include <QStringList>

// The running montage's channels, one row each, with every column as the table shows it.
// Filter cut-offs of 0 (the common filter) show as empty text.
class MontageChannelListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        TypeRole,
        InputRole,
        ReferenceRole,
        HighPassRole,
        LowPassRole,
        BandStopRole,
        ScaleRole,
        OffsetRole,
        VisualScaleRole,
    };

    explicit MontageChannelListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setChannels(const QList<MontageChannel>& channels, const QStringList& typeNames);
    const QList<MontageChannel>& channels() const { return m_channels; }

    // General format, 6 significant digits, as in montage files.
    static QString numberText(double value);

Q_SIGNALS:
    void countChanged();

private:
    QList<MontageChannel> m_channels;
    QStringList m_typeNames;
};
