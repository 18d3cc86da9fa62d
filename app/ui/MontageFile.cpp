#include "app/ui/MontageFile.h"

#include "dsp/AmplifierChannel.h"
#include "dsp/Montage.h"
#include "dsp/MontageList.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace {
const QString ReferenceKey = QStringLiteral("reference");
const QString OffsetKey = QStringLiteral("offset");
const QString VisualScaleKey = QStringLiteral("visualScale");
const QString ChannelsKey = QStringLiteral("chan_list");

QJsonObject toJson(const QString& path, const QList<MontageChannel>& channels, float frequency)
{
    Montage montage(QFileInfo(path).completeBaseName());
    for (const MontageChannel& channel : channels) {
        auto* amplifier = new AmplifierChannel(unsigned(qMax(0, channel.group1)), float(channel.scale),
                                               ChannelType(qBound(0, channel.userTag, 7)));
        amplifier->setChannelName(channel.name);
        amplifier->setLPF(float(channel.lowPass));
        amplifier->setHPF(float(channel.highPass));
        amplifier->setBSF(float(channel.bandStop));
        amplifier->setGroup1(unsigned(qMax(0, channel.group1)));
        montage.push_back(amplifier);
    }
    montage.setCurrentSampleFreq(frequency);
    QJsonObject json = montage.toJson();
    QJsonArray list = json.value(ChannelsKey).toArray();
    for (qsizetype i = 0; i < list.size(); ++i) {
        QJsonObject item = list[i].toObject();
        const MontageChannel& channel = channels[i];
        if (channel.group2 >= 0)
            item.insert(ReferenceKey, channel.group2);
        if (channel.offset != 0)
            item.insert(OffsetKey, channel.offset);
        if (channel.visualScale != 1)
            item.insert(VisualScaleKey, channel.visualScale);
        list[i] = item;
    }
    json.insert(ChannelsKey, list);
    return json;
}

bool loadJson(const QByteArray& data, QList<MontageChannel>& channels, QString& error)
{
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(data, &parse);
    if (!document.isObject()) {
        error = parse.error != QJsonParseError::NoError ? parse.errorString() : QStringLiteral("no JSON object");
        return false;
    }
    const QJsonObject json = document.object();
    Montage montage;
    montage.fromJson(json);
    montage.rebuildMontageChannelList();
    channels = montage.getMontageChannelList();
    const QJsonArray list = json.value(ChannelsKey).toArray();
    for (qsizetype i = 0; i < channels.size(); ++i) {
        const QJsonObject item = list[i].toObject();
        MontageChannel& channel = channels[i];
        channel.userTag = montage[int(i)]->getChannelType();
        channel.group2 = item.value(ReferenceKey).toInt(-1);
        channel.offset = item.value(OffsetKey).toDouble(0);
        channel.visualScale = item.value(VisualScaleKey).toDouble(1);
    }
    return true;
}
}

bool MontageFile::isJson(const QString& path)
{
    return path.endsWith(QLatin1String(".json"), Qt::CaseInsensitive);
}

QStringList MontageFile::typeNames()
{
    QStringList names;
    AmplifierChannel channel;
    for (int type = ChannelType_EEG; type <= ChannelType_Temp; ++type) {
        channel.setChannelType(ChannelType(type));
        names.append(channel.getTextType());
    }
    return names;
}

bool MontageFile::save(const QString& path, const QList<MontageChannel>& channels, float frequency, QString& error)
{
    QByteArray data;
    if (isJson(path)) {
        data = QJsonDocument(toJson(path, channels, frequency)).toJson(QJsonDocument::Indented);
    } else {
        MontageList list;
        list.setChannels(channels);
        list.setFrequency(frequency);
        data = list.saveAsString().toUtf8();
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        error = QStringLiteral("Cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool MontageFile::load(const QString& path, QList<MontageChannel>& channels, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    bool read = true;
    if (isJson(path)) {
        read = loadJson(file.readAll(), channels, error);
    } else {
        MontageList list;
        MontageList::read(path, &list);
        read = list.reload();
        channels = list.channels();
        if (!read)
            error = QStringLiteral("damaged XML");
    }
    if (read && channels.isEmpty()) {
        error = QStringLiteral("no channels");
        read = false;
    }
    if (!read)
        error = QStringLiteral("Not a montage file (%1): %2").arg(error, path);
    return read;
}
