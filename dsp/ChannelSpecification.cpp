#include "dsp/ChannelSpecification.h"

#include "services/GlobalConsole.h"

namespace {

bool isIndexText(const QString& text)
{
    for (QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return !text.isEmpty();
}

int findName(const QList<QString>& names, const QString& name)
{
    for (int i = 0; i < names.size(); ++i) {
        if (names.at(i).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

} // namespace

ChannelSpecification::ChannelSpecification(QString text)
    : m_text(std::move(text))
{
    resolve();
}

void ChannelSpecification::setText(const QString& text, const QString& owner)
{
    if (text == m_text)
        return;
    m_text = text;
    m_resolved = false;
    update(m_channelNames, owner);
}

void ChannelSpecification::update(const QList<QString>& channelNames, const QString& owner)
{
    if (m_resolved && channelNames == m_channelNames)
        return;
    m_channelNames = channelNames;
    m_resolved = true;
    resolve();
    if (!m_channelNames.isEmpty() && !m_unknown.isEmpty()) {
        GlobalConsole::writeLine(QStringLiteral("%1: unknown channels ignored: %2")
                                     .arg(owner, m_unknown.join(QStringLiteral(", "))));
    }
}

void ChannelSpecification::resolve()
{
    m_indexes.clear();
    m_unknown.clear();
    const bool namesKnown = !m_channelNames.isEmpty();
    const QStringList entries = m_text.split(QLatin1Char(','));
    for (const QString& raw : entries) {
        const QString entry = raw.trimmed();
        if (entry.isEmpty())
            continue;
        int index = findName(m_channelNames, entry);
        if (index < 0 && isIndexText(entry)) {
            bool ok = false;
            index = entry.toInt(&ok);
            if (!ok || (namesKnown && index >= m_channelNames.size()))
                index = -1;
        }
        if (index >= 0) {
            if (!m_indexes.contains(index))
                m_indexes.append(index);
        } else if (!m_unknown.contains(entry, Qt::CaseInsensitive)) {
            m_unknown.append(entry);
        }
    }
}
