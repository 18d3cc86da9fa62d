#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Which channels an algorithm reads: a comma-separated list of channel names (any case) or
// 0-based channel indexes, e.g. "O1, o2, 5". Empty selects every channel. An entry is taken as
// a name first and as an index only when no channel has that name. Unknown names and indexes
// outside the channel list are ignored and reported on the console in one line, once for each
// change of the text or of the channel list. Before any channel names are known, indexes are
// taken unchecked and names wait (nothing is reported).
class ChannelSpecification
{
public:
    explicit ChannelSpecification(QString text = QString());

    QString getText() const { return m_text; }
    void setText(const QString& text, const QString& owner);
    // Resolves the text against the channel names; owner prefixes the console line.
    void update(const QList<QString>& channelNames, const QString& owner);

    // Selected channel indexes in the order written, without repeats; empty means all.
    const QList<int>& getIndexes() const { return m_indexes; }
    // Entries of the text that matched no channel at the last update.
    QStringList getUnknown() const { return m_unknown; }

private:
    void resolve();

    QString m_text;
    QList<QString> m_channelNames;
    bool m_resolved = false;
    QList<int> m_indexes;
    QStringList m_unknown;
};
