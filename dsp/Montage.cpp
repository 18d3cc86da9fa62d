#include "dsp/Montage.h"

#include <QJsonArray>

#include <algorithm>
#include <climits>

Montage::Montage(const QString& name)
{
    setMontageName(name);
}

Montage::~Montage()
{
    clearChannel();
}

QString Montage::fileNameFor(const QString& name)
{
    return name.contains(QLatin1String(".xml")) ? name : name + QLatin1String(".xml");
}

QJsonObject Montage::toJson() const
{
    QJsonArray channels;
    for (const AmplifierChannel* channel : m_channels)
        channels.append(channel->toJson());
    QJsonObject json;
    json.insert(QStringLiteral("name"), m_name);
    json.insert(QStringLiteral("file_name"), m_fileName);
    json.insert(QStringLiteral("chan_list"), channels);
    return json;
}

void Montage::fromJson(const QJsonObject& json)
{
    setMontageName(json.value(QStringLiteral("name")).toString());
    clearChannel();
    const QJsonArray channels = json.value(QStringLiteral("chan_list")).toArray();
    for (const QJsonValue& channel : channels)
        m_channels.append(new AmplifierChannel(channel.toObject()));
}

void Montage::push_back(AmplifierChannel* channel)
{
    if (channel)
        m_channels.append(channel);
}

void Montage::insert(int index, AmplifierChannel* channel)
{
    if (!channel)
        return;
    m_channels.insert(std::clamp(index, 0, size()), channel);
}

AmplifierChannel* Montage::erase(int index)
{
    if (index < 0 || index >= size())
        return nullptr;
    return m_channels.takeAt(index);
}

bool Montage::removeChannel(int index)
{
    AmplifierChannel* channel = erase(index);
    delete channel;
    return channel != nullptr;
}

void Montage::clearChannel()
{
    qDeleteAll(m_channels);
    m_channels.clear();
}

void Montage::resize(unsigned newSize)
{
    const int target = static_cast<int>(std::min<unsigned>(newSize, INT_MAX));
    while (size() > target)
        delete m_channels.takeLast();
    while (size() < target)
        m_channels.append(new AmplifierChannel(static_cast<unsigned>(size()), 1.0f, ChannelType_EEG));
}

AmplifierChannel* Montage::operator[](int index) const
{
    if (index < 0 || index >= size())
        return nullptr;
    return m_channels.at(index);
}

void Montage::copyChannels(QList<AmplifierChannel*>& target) const
{
    target.clear();
    target.reserve(m_channels.size());
    for (const AmplifierChannel* channel : m_channels)
        target.append(new AmplifierChannel(*channel));
}

QList<QString> Montage::getChannelNames() const
{
    QList<QString> names;
    names.reserve(m_channels.size());
    for (const AmplifierChannel* channel : m_channels)
        names.append(channel->getName());
    return names;
}

int Montage::getIndexByName(const QString& name) const
{
    for (int i = 0; i < size(); ++i) {
        if (*m_channels.at(i) == name)
            return i;
    }
    return -1;
}

void Montage::setMontageName(const QString& name)
{
    m_name = name;
    m_fileName = fileNameFor(name);
}

void Montage::setCurrentSampleFreq(float sampleFreq)
{
    m_sampleFreq = sampleFreq;
    for (AmplifierChannel* channel : m_channels) {
        AmplifierChannel::Filters filters = channel->getFilterRef();
        filters.sampleRate = sampleFreq;
        channel->setFilterData(filters);
    }
}

QSet<int> Montage::getECGChannel() const
{
    QSet<int> indices;
    for (int i = 0; i < size(); ++i) {
        if (m_channels.at(i)->getChannelType() == ChannelType_ECG)
            indices.insert(i);
    }
    return indices;
}

void Montage::makeChannelDataList()
{
    m_channelData = QList<QList<float>>(size());
}

void Montage::rebuildMontageChannelList()
{
    m_montageChannels.clear();
    m_montageChannels.reserve(m_channels.size());
    for (const AmplifierChannel* channel : m_channels) {
        m_montageChannels.append(MontageChannel(channel->getName(), channel->getIndex(), -1,
                                                channel->getLPF(), channel->getHPF(),
                                                channel->getBSF(), channel->getScale(), 1.0, 0.0));
    }
}

void Montage::createChannelFilterList()
{
    m_channelFilters.clear();
    m_channelFilters.reserve(m_channels.size());
    for (const AmplifierChannel* channel : m_channels)
        m_channelFilters.append(channel->getFilterRef());
}
