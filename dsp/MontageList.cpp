#include "dsp/MontageList.h"

#include "services/GlobalConsole.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

// Malformed numbers keep the field's default rather than turning into 0.
void readDouble(QStringView text, double& field)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (ok)
        field = value;
}

void readInt(QStringView text, int& field)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (ok)
        field = value;
}

// Names are compared lower-cased so both the written short names (G1, LP, FT) and the long
// forms of hand-written files (lpf, filterType) are accepted.
void applyChannelAttribute(MontageChannel& channel, const QString& name, QStringView value)
{
    if (name == QLatin1String("name"))
        channel.name = value.toString();
    else if (name == QLatin1String("g1"))
        readInt(value, channel.group1);
    else if (name == QLatin1String("g2"))
        readInt(value, channel.group2);
    else if (name == QLatin1String("lp") || name == QLatin1String("lpf"))
        readDouble(value, channel.lowPass);
    else if (name == QLatin1String("hp") || name == QLatin1String("hpf"))
        readDouble(value, channel.highPass);
    else if (name == QLatin1String("bs") || name == QLatin1String("bsf"))
        readDouble(value, channel.bandStop);
    else if (name == QLatin1String("offset"))
        readDouble(value, channel.offset);
    else if (name == QLatin1String("visualscale"))
        readDouble(value, channel.visualScale);
    else if (name == QLatin1String("scale"))
        readDouble(value, channel.scale);
    else if (name == QLatin1String("ft") || name == QLatin1String("filtertype"))
        readInt(value, channel.filterType);
    else if (name == QLatin1String("color"))
        channel.color = value.toString();
}

MontageChannel readChannel(const QXmlStreamAttributes& attributes)
{
    MontageChannel channel;
    for (const QXmlStreamAttribute& attribute : attributes)
        applyChannelAttribute(channel, attribute.name().toString().toLower(), attribute.value());
    return channel;
}

void writeChannel(QXmlStreamWriter& writer, const MontageChannel& channel)
{
    writer.writeStartElement(QStringLiteral("Channel"));
    writer.writeAttribute(QStringLiteral("name"), channel.name);
    writer.writeAttribute(QStringLiteral("G1"), QString::number(channel.group1));
    if (channel.group2 >= 0)
        writer.writeAttribute(QStringLiteral("G2"), QString::number(channel.group2));
    writer.writeAttribute(QStringLiteral("LP"), numberText(channel.lowPass));
    writer.writeAttribute(QStringLiteral("HP"), numberText(channel.highPass));
    writer.writeAttribute(QStringLiteral("BS"), numberText(channel.bandStop));
    if (!channel.color.isEmpty())
        writer.writeAttribute(QStringLiteral("color"), channel.color);
    if (channel.offset != 0.0)
        writer.writeAttribute(QStringLiteral("offset"), numberText(channel.offset));
    if (channel.scale != 1.0)
        writer.writeAttribute(QStringLiteral("scale"), numberText(channel.scale));
    if (channel.visualScale != 1.0)
        writer.writeAttribute(QStringLiteral("visualScale"), numberText(channel.visualScale));
    if (channel.filterType != 1)
        writer.writeAttribute(QStringLiteral("FT"), QString::number(channel.filterType));
    writer.writeEndElement();
}

} // namespace

MontageList::MontageList(QObject* parent)
    : QObject(parent)
{
}

MontageList* MontageList::read(const QString& path, MontageList* into)
{
    MontageList* list = into ? into : new MontageList();
    readInto(path, list);
    return list;
}

bool MontageList::reload()
{
    return readInto(m_path, this);
}

bool MontageList::readInto(const QString& path, MontageList* list)
{
    list->m_title.clear();
    list->m_frequency = 0.0f;
    list->m_channels.clear();
    list->m_path = path;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        GlobalConsole::writeLine(QStringLiteral("Montage: cannot open %1: %2").arg(path, file.errorString()));
        return false;
    }
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QStringView element = reader.name();
        if (element.compare(QLatin1String("Montage"), Qt::CaseInsensitive) == 0) {
            const QXmlStreamAttributes attributes = reader.attributes();
            for (const QXmlStreamAttribute& attribute : attributes) {
                const QString name = attribute.name().toString().toLower();
                if (name == QLatin1String("frequency")) {
                    bool ok = false;
                    const float frequency = attribute.value().toFloat(&ok);
                    if (ok)
                        list->m_frequency = frequency;
                } else if (name == QLatin1String("title")) {
                    list->m_title = attribute.value().toString();
                }
            }
        } else if (element.compare(QLatin1String("Channel"), Qt::CaseInsensitive) == 0) {
            list->m_channels.append(readChannel(reader.attributes()));
        }
    }
    if (reader.hasError()) {
        GlobalConsole::writeLine(QStringLiteral("Montage: %1 line %2: %3 (kept %4 channels)")
                                     .arg(path)
                                     .arg(reader.lineNumber())
                                     .arg(reader.errorString())
                                     .arg(list->m_channels.size()));
        return false;
    }
    return true;
}

bool MontageList::save(const QString& path) const
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        GlobalConsole::writeLine(QStringLiteral("Montage: cannot write %1: %2").arg(path, file.errorString()));
        return false;
    }
    const QByteArray bytes = saveAsString().toUtf8();
    if (file.write(bytes) != bytes.size()) {
        GlobalConsole::writeLine(QStringLiteral("Montage: writing %1 failed: %2").arg(path, file.errorString()));
        return false;
    }
    return true;
}

bool MontageList::saveAs(const QString& path)
{
    m_path = path;
    return save(path);
}

QString MontageList::saveAsString() const
{
    QString text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("Montage"));
    if (m_frequency > 0.0f)
        writer.writeAttribute(QStringLiteral("frequency"), numberText(m_frequency));
    if (!m_title.isEmpty())
        writer.writeAttribute(QStringLiteral("title"), m_title);
    for (const MontageChannel& channel : m_channels)
        writeChannel(writer, channel);
    writer.writeEndElement();
    writer.writeEndDocument();
    return text;
}

void MontageList::addChannel(const MontageChannel& channel)
{
    m_channels.append(channel);
}

bool MontageList::removeChannel(int index)
{
    if (index < 0 || index >= m_channels.size())
        return false;
    m_channels.removeAt(index);
    return true;
}

bool MontageList::moveChannel(int from, int to)
{
    if (from < 0 || from >= m_channels.size() || to < 0 || to >= m_channels.size())
        return false;
    m_channels.move(from, to);
    return true;
}

void MontageList::setChannels(const QList<MontageChannel>& channels)
{
    m_channels = channels;
}
