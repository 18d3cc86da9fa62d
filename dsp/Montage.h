#pragma once

#include "dsp/AmplifierChannel.h"
#include "dsp/MontageChannel.h"

#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>

// Where a montage came from; subclasses report theirs through getType().
enum Montage_Type : qint32
{
    Montage_Type_Generic = 0, // built in code or read from JSON
    Montage_Type_Device = 1,  // default montage of a connected device
    Montage_Type_File = 2,    // the signals of a recorded file
    Montage_Type_User = 3     // edited by the user
};

// A named list of amplifier channels as the settings and the screens edit it, with its file
// name and the sample rate of the device it is used with. Owns its channels.
class Montage
{
public:
    Montage() = default;
    explicit Montage(const QString& name);
    virtual ~Montage();
    Montage(const Montage&) = delete;
    Montage& operator=(const Montage&) = delete;

    // {"name", "file_name", "chan_list": [channel JSON...]}
    virtual QJsonObject toJson() const;
    // Replaces name, file name and channels; the file name is derived from "name".
    virtual void fromJson(const QJsonObject& json);
    virtual Montage_Type getType() const { return Montage_Type_Generic; }

    // Takes ownership of the channel; a null channel is ignored.
    void push_back(AmplifierChannel* channel);
    void insert(int index, AmplifierChannel* channel);
    // Hands the channel to the caller; null when the index is out of range.
    AmplifierChannel* erase(int index);
    bool removeChannel(int index);
    void clearChannel();
    // Shrinking deletes the channels beyond the new size; growing appends default EEG
    // channels numbered by their position.
    void resize(unsigned size);
    int size() const { return static_cast<int>(m_channels.size()); }
    bool empty() const { return m_channels.isEmpty(); }
    // Null when the index is out of range.
    AmplifierChannel* operator[](int index) const;

    // Fills `target` (cleared first) with new copies owned by the caller.
    void copyChannels(QList<AmplifierChannel*>& target) const;

    QList<QString> getChannelNames() const;
    int getIndexByName(const QString& name) const;
    QString getMontageName() const { return m_name; }
    // Also sets the file name: the name itself when it contains ".xml", else name + ".xml".
    void setMontageName(const QString& name);
    QString getMontageFileName() const { return m_fileName; }

    float getCurrentSampleFreq() const { return m_sampleFreq; }
    // Stores the rate and writes it into every channel's filter description.
    void setCurrentSampleFreq(float sampleFreq);
    // Indices (positions) of the ECG channels.
    QSet<int> getECGChannel() const;

    // Per-channel lists derived from the channels; rebuild them after changing the channels.
    // One empty sample buffer per channel.
    void makeChannelDataList();
    QList<QList<float>>& getChannelDataList() { return m_channelData; }
    // The engine form: active input = the channel's index, no reference, its filters and scale.
    void rebuildMontageChannelList();
    QList<MontageChannel> getMontageChannelList() const { return m_montageChannels; }
    // A snapshot of every channel's filter description (cut-offs, choices, sample rate).
    void createChannelFilterList();
    void removeChannelFilterList() { m_channelFilters.clear(); }
    QList<AmplifierChannel::Filters> getChannelFilterList() const { return m_channelFilters; }

private:
    static QString fileNameFor(const QString& name);

    QString m_name;
    QString m_fileName;
    QList<AmplifierChannel*> m_channels;
    float m_sampleFreq = 0.0f;
    QList<QList<float>> m_channelData;
    QList<MontageChannel> m_montageChannels;
    QList<AmplifierChannel::Filters> m_channelFilters;
};
