#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QStringList>

// The montage channels with what the screens show of each: visibility in the traces, selection
// for the spectrum, and the signal quality of the status bar.
class ChannelListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    Q_PROPERTY(QStringList names READ names NOTIFY countChanged)
    Q_PROPERTY(QList<int> visibleChannels READ visibleChannels NOTIFY visibilityChanged)
    Q_PROPERTY(QList<int> spectrumChannels READ spectrumChannels NOTIFY spectrumSelectionChanged)
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        VisibleRole,
        InSpectrumRole,
        QualityRole,      // percent, -1 before the first reading
        QualityLevelRole  // "bad" (< 20), "average" (< 90), "good", "unknown"
    };
    enum QualityLevel { Unknown, Bad, Average, Good };
    Q_ENUM(QualityLevel)

    explicit ChannelListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // A new montage: every channel shown, the first two in the spectrum. Same names keep choices.
    void setNames(const QStringList& names);
    QStringList names() const { return m_names; }
    void setQuality(const QList<int>& quality);
    QList<int> quality() const { return m_quality; }
    static QualityLevel levelOf(int quality);
    static QString levelName(QualityLevel level);

    Q_INVOKABLE void setVisible(int channel, bool visible);
    Q_INVOKABLE void setAllVisible(bool visible);
    Q_INVOKABLE void setInSpectrum(int channel, bool selected);
    QList<int> visibleChannels() const;
    QList<int> spectrumChannels() const;

Q_SIGNALS:
    void countChanged();
    void visibilityChanged();
    void spectrumSelectionChanged();
    void qualityChanged();

private:
    QStringList m_names;
    QList<bool> m_visible;
    QList<bool> m_inSpectrum;
    QList<int> m_quality;
};
