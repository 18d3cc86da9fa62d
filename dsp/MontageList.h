#pragma once

#include "dsp/MontageChannel.h"

#include <QList>
#include <QObject>
#include <QString>

// A montage in the form the engine applies to a running device, persisted as an XML file:
// <Montage frequency=".." title=".."><Channel name=".." G1=".." .../></Montage>.
class MontageList : public QObject
{
    Q_OBJECT
public:
    explicit MontageList(QObject* parent = nullptr);

    // Reads the XML file into `into` (replacing its content), or into a new list owned by the
    // caller when `into` is null. A file that cannot be opened gives an empty list; a damaged
    // one keeps what was read before the damage. Never null.
    static MontageList* read(const QString& path, MontageList* into = nullptr);
    // Reads the file at path() again; false when it cannot be opened or is damaged.
    bool reload();

    bool save(const QString& path) const;
    bool saveAs(const QString& path);
    QString saveAsString() const;

    void addChannel(const MontageChannel& channel);
    bool removeChannel(int index);
    bool moveChannel(int from, int to);
    void setChannels(const QList<MontageChannel>& channels);
    QList<MontageChannel> channels() const { return m_channels; }

    QString title() const { return m_title; }
    void setTitle(const QString& title) { m_title = title; }
    float frequency() const { return m_frequency; }
    void setFrequency(float frequency) { m_frequency = frequency; }
    QString path() const { return m_path; }

private:
    static bool readInto(const QString& path, MontageList* list);

    QString m_title;
    float m_frequency = 0.0f;
    QString m_path;
    QList<MontageChannel> m_channels;
};
