#include "formats/EDFReader.h"

#include "formats/EdfFieldText.h"
#include "services/GlobalConsoleWriter.h"

#include <QStringList>

#include <algorithm>
#include <cstring>

namespace {

constexpr qint64 TicksPerSecond = EdfFieldText::TicksPerSecond;

// EDF+ subfield: "X" is unknown, "_" stands for a blank.
QString subfieldText(const QStringList& fields, int index)
{
    if (index >= fields.size() || fields[index] == QLatin1String("X"))
        return QString();
    return QString(fields[index]).replace(QLatin1Char('_'), QLatin1Char(' '));
}

// "02-AUG-1951"; false when the text is not such a date.
bool parseBirthDate(const QString& text, int* year, int* month, int* day)
{
    static const QStringList months{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                    "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    const QStringList parts = text.split(QLatin1Char('-'));
    if (parts.size() != 3)
        return false;
    bool okDay = false, okYear = false;
    const int d = parts[0].toInt(&okDay);
    const int m = int(months.indexOf(parts[1].toUpper())) + 1;
    const int y = parts[2].toInt(&okYear);
    if (!okDay || !okYear || m < 1 || !QDate(y, m, d).isValid())
        return false;
    *year = y;
    *month = m;
    *day = d;
    return true;
}

void copyText(char* target, int size, const QByteArray& text)
{
    const int n = std::min<int>(size - 1, int(text.size()));
    std::memcpy(target, text.constData(), size_t(n));
    target[n] = '\0';
}

} // namespace

EDFReader::EDFReader() : QObject(nullptr) {}

EDFReader::EDFReader(const QString& path, QObject* parent) : QObject(parent), m_path(path) {}

EDFReader::~EDFReader() = default;

bool EDFReader::open()
{
    if (m_opened)
        close();
    resetFacts();
    if (!m_reader.open(m_path))
    {
        kxDebug() << QString("EDFReader: cannot open %1: %2").arg(m_path, m_reader.errorString());
        m_opened = false;
        return false;
    }
    readHeaderFacts();
    readAnnotations();
    m_opened = true;
    return true;
}

bool EDFReader::close()
{
    if (m_montage)
        m_montage->clearChannel();
    if (!m_opened || !m_reader.isOpen())
        return false;
    m_reader.close();
    m_opened = false;
    return true;
}

void EDFReader::resetFacts()
{
    m_startDate = QDateTime();
    m_channels.clear();
    m_samplingRate = 0.0f;
    m_seconds = 0.0;
    m_lengthSamples = 0;
    m_dimension.clear();
    m_filters.clear();
    m_patientName.clear();
    m_patientData.clear();
    m_patientGender.clear();
    m_equipment.clear();
    m_annotations.clear();
}

void EDFReader::readHeaderFacts()
{
    const EdfFileHeader& h = m_reader.header();
    m_startDate = h.startDateTime.addMSecs(m_reader.startOffsetTicks() / 10000);
    m_channels = m_reader.dataSignals();
    // Whole seconds, split so that a long record duration times many records (both taken
    // from the file) cannot overflow: the 8-character duration field keeps whole seconds
    // per record below 10^8.
    const qint64 records = m_reader.recordCount();
    const qint64 ticks = h.recordDurationTicks;
    m_seconds = double(records * (ticks / TicksPerSecond) + records * (ticks % TicksPerSecond) / TicksPerSecond);

    m_patientName = h.patient;
    if (m_reader.isPlus())
    {
        const QStringList patient = h.patient.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QStringList recording = h.recording.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        m_patientGender = subfieldText(patient, 1);
        m_patientData = subfieldText(patient, 2);
        m_equipment = subfieldText(recording, 4);
    }

    if (!m_montage)
        m_montage = QSharedPointer<Montage>::create();
    m_montage->clearChannel();
    if (m_channels.isEmpty())
        return;
    const EdfSignalHeader& first = m_reader.signalHeaders()[m_channels.first()];
    m_filters = parsePrefilter(first.prefiltering);
    m_dimension = first.physicalDimension.trimmed();
    m_samplingRate = float(double(first.samplesPerRecord) * TicksPerSecond / double(h.recordDurationTicks));
    m_lengthSamples = unsigned(m_reader.samplesInSignal(m_channels.first()));
    for (int k = 0; k < m_channels.size(); ++k)
    {
        auto* channel = new AmplifierChannel(unsigned(k), 1.0f, ChannelType_EEG);
        channel->setChannelName(m_reader.signalHeaders()[m_channels[k]].label);
        m_montage->push_back(channel);
    }
    m_montage->setCurrentSampleFreq(m_samplingRate);
}

void EDFReader::readAnnotations()
{
    const qint64 offset = m_reader.startOffsetTicks();
    for (const EdfAnnotation& a : m_reader.annotations())
    {
        edf_annotation_struct record;
        record.onset = a.onsetTicks - offset;
        if (a.durationTicks >= 0)
            copyText(record.duration, sizeof(record.duration), EdfFieldText::formatTicks(a.durationTicks, false));
        copyText(record.annotation, sizeof(record.annotation), a.text.toUtf8());
        m_annotations.append(record);
    }
}

QMap<QString, float> EDFReader::parsePrefilter(const QString& text)
{
    // Inverse of the recorder's "HP:0.5Hz LP:30.0Hz " text. A piece without ":" (such as
    // the "0" written when there were no filters) or without a number names no filter.
    QMap<QString, float> filters;
    for (const QString& piece : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
    {
        const QString body = piece.left(piece.size() - 2);
        const int colon = int(body.indexOf(QLatin1Char(':')));
        if (colon < 0)
            continue;
        bool ok = false;
        const float value = body.mid(colon + 1).toFloat(&ok);
        if (ok)
            filters.insert(piece.left(2), value);
    }
    return filters;
}

QString EDFReader::getChannelName(int channel) const
{
    if (channel < 0 || channel >= m_channels.size())
        return QString();
    return m_reader.signalHeaders()[m_channels[channel]].label;
}

QList<QString> EDFReader::getChannelNames() const
{
    QList<QString> names;
    for (int k = 0; k < m_channels.size(); ++k)
        names.append(getChannelName(k));
    return names;
}

bool EDFReader::getPatientInfo(PatientInfo& info) const
{
    if (!m_opened)
        return false;
    info = PatientInfo();
    info.equipment = m_equipment;
    if (!m_reader.isPlus())
    {
        info.patientName = m_patientName.trimmed();
        return true;
    }
    const QStringList fields = m_patientName.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    info.patientCode = subfieldText(fields, 0);
    info.gender = m_patientGender == QLatin1String("M") ? 1 : m_patientGender == QLatin1String("F") ? 2 : 0;
    parseBirthDate(m_patientData, &info.birthYear, &info.birthMonth, &info.birthDay);
    info.patientName = subfieldText(fields, 3);
    info.patientAdditional = fields.mid(4).join(QLatin1Char(' '));
    return true;
}

int EDFReader::getBuffData(unsigned from, unsigned count, double* out)
{
    if (!m_opened)
        return -2;
    if (m_channels.isEmpty())
        return 0;
    int least = int(count);
    for (int k = 0; k < m_channels.size(); ++k)
    {
        const int read = getChannelBuffData(unsigned(k), from, count, out + qint64(k) * count);
        if (read < 0)
            return read;
        least = std::min(least, read);
    }
    return least;
}

int EDFReader::getChannelBuffData(unsigned channel, unsigned from, unsigned count, double* out)
{
    if (!m_opened)
        return -2;
    if (channel >= unsigned(m_channels.size()))
        return -1;
    const qint64 read = m_reader.readSamples(m_channels[int(channel)], from, count, out);
    for (qint64 i = 0; i < read; ++i)
        out[i] = -out[i];
    return int(read);
}

qsizetype EDFReader::availableCount(unsigned channel, unsigned from, unsigned count) const
{
    // Sized from what the file holds, never from the caller's count alone.
    if (!m_opened || channel >= unsigned(m_channels.size()))
        return 0;
    const qint64 left = m_reader.samplesInSignal(m_channels[int(channel)]) - qint64(from);
    return qsizetype(std::clamp<qint64>(left, 0, count));
}

QList<double> EDFReader::getChannelData(unsigned channel, unsigned from, unsigned count)
{
    QList<double> values(availableCount(channel, from, count));
    const int read = getChannelBuffData(channel, from, unsigned(values.size()), values.data());
    values.resize(std::max(read, 0));
    return values;
}

QList<float> EDFReader::getChannelDataFloat(unsigned channel, unsigned from, unsigned count)
{
    if (!m_opened || channel >= unsigned(m_channels.size()))
        return {};
    QList<float> values(availableCount(channel, from, count));
    const qint64 read = m_reader.readSamples(m_channels[int(channel)], from, values.size(), values.data());
    values.resize(std::max<qint64>(read, 0));
    for (float& v : values)
        v = -v;
    return values;
}

QMap<qint64, QString> EDFReader::getAnnotations() const
{
    QMap<qint64, QString> map;
    for (const edf_annotation_struct& a : m_annotations)
        map.insert(a.onset / 10000, QString::fromUtf8(a.annotation));
    return map;
}

QString EDFReader::timeToText(double seconds, bool withMs)
{
    // NaN and negative times show as 0; the cap (about 31 700 years) keeps the
    // conversion to whole milliseconds defined.
    const double shown = seconds > 0.0 ? std::min(seconds, 1e12) : 0.0;
    const qint64 ms = qint64(shown * 1000.0 + 0.5);
    const qint64 s = ms / 1000;
    QString text = QString("%1:%2:%3")
                       .arg(s / 3600, 2, 10, QLatin1Char('0'))
                       .arg(s / 60 % 60, 2, 10, QLatin1Char('0'))
                       .arg(s % 60, 2, 10, QLatin1Char('0'));
    if (withMs)
        text += QString(".%1").arg(ms % 1000, 3, 10, QLatin1Char('0'));
    return text;
}

QString EDFReader::infoShort() const
{
    return QString("%1ch, %2Hz, %3").arg(getChannelCount()).arg(double(m_samplingRate)).arg(timeToText(m_seconds, false));
}

QString EDFReader::infoFull() const
{
    QStringList filters;
    for (auto it = m_filters.cbegin(); it != m_filters.cend(); ++it)
        filters << QString("%1:%2Hz").arg(it.key()).arg(double(it.value()));
    return QString("%1\n%2 %3\n%4, %5 samples, %6\nPrefilter: %7")
        .arg(m_path, m_reader.isBdf() ? "BDF" : "EDF", m_startDate.toString("yyyy-MM-dd hh:mm:ss.zzz"),
             infoShort())
        .arg(m_lengthSamples)
        .arg(m_dimension, filters.join(' '));
}

EDFInfo EDFReader::fileInfo(const QString& path)
{
    EDFInfo info;
    info.path = path;
    EDFReader reader(path);
    if (!reader.open())
        return info;
    info.valid = true;
    info.bdf = reader.isBdf();
    info.startDate = reader.startDate();
    info.channelCount = reader.getChannelCount();
    info.samplingRate = reader.samplingRate();
    info.durationSeconds = reader.getSeconds();
    info.lengthSamples = reader.lengthSamples();
    info.channelNames = reader.getChannelNames();
    info.annotationCount = int(reader.m_annotations.size());
    reader.close();
    return info;
}
