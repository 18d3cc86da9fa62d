#include "formats/EdfFileReader.h"

#include "formats/EdfFieldText.h"
#include "services/GlobalConsoleWriter.h"

#include <algorithm>

namespace {

QByteArray field(const QByteArray& bytes, int offset, int width)
{
    return bytes.mid(offset, width);
}

// Headers should be ASCII; other writers' Latin-1 bytes are kept, control bytes (NUL
// padding included) read as blanks.
QString text(const QByteArray& bytes, int offset, int width)
{
    QByteArray part = bytes.mid(offset, width);
    for (char& c : part)
        if (static_cast<unsigned char>(c) < 32)
            c = ' ';
    return QString::fromLatin1(part).trimmed();
}

// "dd.mm.yy" / "hh.mm.ss": exactly two digits each, "." between; empty when malformed.
QList<int> threeNumbers(const QByteArray& f)
{
    if (f.size() != 8 || f[2] != '.' || f[5] != '.')
        return {};
    QList<int> numbers;
    for (int i = 0; i < 8; i += 3)
    {
        if (f[i] < '0' || f[i] > '9' || f[i + 1] < '0' || f[i + 1] > '9')
            return {};
        numbers.append((f[i] - '0') * 10 + (f[i + 1] - '0'));
    }
    return numbers;
}

} // namespace

bool EdfFileReader::refuse(const QString& reason)
{
    m_error = reason;
    kxDebug() << QString("EdfFileReader: %1: %2").arg(m_file.fileName(), reason);
    m_file.close();
    m_signals.clear();
    m_recordStarts.clear();
    m_annotations.clear();
    m_recordCount = 0;
    return false;
}

void EdfFileReader::close()
{
    m_file.close();
    m_signals.clear();
    m_offsets.clear();
    m_recordStarts.clear();
    m_annotations.clear();
    m_recordCount = 0;
    m_buffer.clear();
}

bool EdfFileReader::open(const QString& path)
{
    close();
    m_error.clear();
    m_header = EdfFileHeader();
    m_file.setFileName(path);
    // Unbuffered: every read is one record's part of one signal after a seek; a read-ahead
    // buffer would be filled and thrown away each time.
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return refuse(QStringLiteral("cannot open the file: %1").arg(m_file.errorString()));
    const qint64 fileSize = m_file.size();
    const QByteArray fixed = m_file.read(256);
    if (fixed.size() < 256)
        return refuse(QStringLiteral("file too short for a header"));
    if (!parseFixedHeader(fixed, fileSize))
        return false;
    const QByteArray block = m_file.read(256LL * m_header.signalCount);
    if (block.size() < 256LL * m_header.signalCount)
        return refuse(QStringLiteral("file too short for its signal headers"));
    if (!parseSignalHeaders(block) || !checkSizes(fileSize))
        return false;
    return readAnnotations();
}

bool EdfFileReader::parseFixedHeader(const QByteArray& h, qint64 fileSize)
{
    const QByteArray version = field(h, 0, 8);
    m_header.bdf = version == QByteArray("\xff" "BIOSEMI");
    if (!m_header.bdf && version != QByteArray("0       "))
        return refuse(QStringLiteral("invalid version bytes (neither EDF nor BDF)"));
    m_header.version = version;
    m_header.patient = text(h, 8, 80);
    m_header.recording = text(h, 88, 80);

    const QList<int> d = threeNumbers(field(h, 168, 8));
    const QList<int> t = threeNumbers(field(h, 176, 8));
    // Two-digit years: 85..99 are 1985..1999, 00..84 are 2000..2084.
    const QDate date = d.isEmpty() ? QDate() : QDate(d[2] >= 85 ? 1900 + d[2] : 2000 + d[2], d[1], d[0]);
    const QTime time = t.isEmpty() ? QTime() : QTime(t[0], t[1], t[2]);
    if (!date.isValid())
        return refuse(QStringLiteral("invalid start date"));
    if (!time.isValid())
        return refuse(QStringLiteral("invalid start time"));
    m_header.startDateTime = QDateTime(date, time);

    qint64 value = 0;
    if (!EdfFieldText::parseInteger(field(h, 252, 4), &value) || value < 1 || value > MaxSignals)
        return refuse(QStringLiteral("invalid number of signals"));
    m_header.signalCount = static_cast<int>(value);
    if (!EdfFieldText::parseInteger(field(h, 184, 8), &value) || value != 256LL * (m_header.signalCount + 1))
        return refuse(QStringLiteral("header bytes field does not equal 256 x (signals + 1)"));
    m_header.headerBytes = static_cast<int>(value);
    if (fileSize < m_header.headerBytes)
        return refuse(QStringLiteral("file too short for its signal headers"));

    m_header.reserved = text(h, 192, 44);
    if (m_header.reserved.startsWith(QLatin1String("EDF+D")) || m_header.reserved.startsWith(QLatin1String("BDF+D")))
        return refuse(QStringLiteral("discontinuous EDF+D/BDF+D files are not supported"));
    m_plus = m_header.reserved.startsWith(QLatin1String("EDF+C")) || m_header.reserved.startsWith(QLatin1String("BDF+C"));

    if (!EdfFieldText::parseInteger(field(h, 236, 8), &value) || (value < 1 && value != -1))
        return refuse(QStringLiteral("invalid number of data records"));
    m_header.recordCount = value;
    if (!EdfFieldText::parseTicks(field(h, 244, 8).trimmed(), false, &value) || value <= 0)
        return refuse(QStringLiteral("invalid record duration"));
    m_header.recordDurationTicks = value;
    return true;
}

bool EdfFileReader::parseSignalHeaders(const QByteArray& b)
{
    const int ns = m_header.signalCount;
    const qint64 limit = m_header.bdf ? 8388607 : 32767;
    m_signals.clear();
    for (int i = 0; i < ns; ++i)
    {
        EdfSignalHeader s;
        s.label = text(b, 16 * i, 16);
        s.transducer = text(b, 16 * ns + 80 * i, 80);
        s.physicalDimension = text(b, 96 * ns + 8 * i, 8);
        s.prefiltering = text(b, 136 * ns + 80 * i, 80);
        s.reserved = text(b, 224 * ns + 32 * i, 32);
        qint64 dmin = 0, dmax = 0, samples = 0;
        const QString which = QStringLiteral(" of signal %1").arg(i);
        if (!EdfFieldText::parseDouble(field(b, 104 * ns + 8 * i, 8), &s.physicalMin)
            || !EdfFieldText::parseDouble(field(b, 112 * ns + 8 * i, 8), &s.physicalMax))
            return refuse(QStringLiteral("physical minimum or maximum is not a number") + which);
        if (!EdfFieldText::parseInteger(field(b, 120 * ns + 8 * i, 8), &dmin)
            || !EdfFieldText::parseInteger(field(b, 128 * ns + 8 * i, 8), &dmax))
            return refuse(QStringLiteral("digital minimum or maximum is not an integer") + which);
        if (!EdfFieldText::parseInteger(field(b, 216 * ns + 8 * i, 8), &samples))
            return refuse(QStringLiteral("samples per record is not an integer") + which);
        if (dmax <= dmin)
            return refuse(QStringLiteral("digital maximum not above digital minimum") + which);
        if (dmin < -limit - 1 || dmax > limit)
            return refuse(QStringLiteral("digital range outside the format's range") + which);
        if (s.physicalMax == s.physicalMin)
            return refuse(QStringLiteral("physical maximum equals physical minimum") + which);
        if (samples < 1 || samples > MaxRecordBytes)
            return refuse(QStringLiteral("invalid samples per record") + which);
        s.digitalMin = static_cast<int>(dmin);
        s.digitalMax = static_cast<int>(dmax);
        s.samplesPerRecord = static_cast<int>(samples);
        m_signals.append(s);
    }
    return true;
}

bool EdfFileReader::checkSizes(qint64 fileSize)
{
    const int bps = m_header.bdf ? 3 : 2;
    m_offsets.clear();
    m_recordBytes = 0;
    bool hasAnnotations = false;
    for (const EdfSignalHeader& s : std::as_const(m_signals))
    {
        m_offsets.append(m_recordBytes);
        m_recordBytes += static_cast<qint64>(s.samplesPerRecord) * bps;
        hasAnnotations = hasAnnotations || s.isAnnotation();
        if (m_recordBytes > MaxRecordBytes)
            return refuse(QStringLiteral("data record size above 10 MiB"));
    }
    // Some converters mark files "EDF+C" without writing an annotation signal; their samples
    // are sound, so such a file reads as plain EDF/BDF (no record times, no annotations).
    if (m_plus && !hasAnnotations)
    {
        kxDebug() << QString("EdfFileReader: %1 has no annotation signal; read as plain %2")
                         .arg(m_file.fileName(), m_header.bdf ? QStringLiteral("BDF") : QStringLiteral("EDF"));
        m_plus = false;
    }
    const qint64 complete = (fileSize - m_header.headerBytes) / m_recordBytes;
    m_recordCount = m_header.recordCount;
    if (m_recordCount == -1 || m_recordCount > complete)
    {
        if (m_recordCount != -1)
            kxDebug() << QString("EdfFileReader: %1 holds %2 of %3 records").arg(m_file.fileName()).arg(complete).arg(m_recordCount);
        m_recordCount = complete;
    }
    return true;
}

bool EdfFileReader::readAnnotations()
{
    if (!m_plus)
        return true;
    for (qint64 r = 0; r < m_recordCount; ++r)
    {
        bool first = true;
        for (int i = 0; i < m_signals.size(); ++i)
        {
            if (!m_signals[i].isAnnotation())
                continue;
            const qint64 size = static_cast<qint64>(m_signals[i].samplesPerRecord) * (m_header.bdf ? 3 : 2);
            if (!m_file.seek(m_header.headerBytes + r * m_recordBytes + m_offsets[i]))
                return refuse(QStringLiteral("cannot seek to record %1").arg(r));
            const QByteArray bytes = m_file.read(size);
            if (bytes.size() != size)
                return refuse(QStringLiteral("cannot read record %1").arg(r));
            if (!parseTals(bytes, r, first))
                return false;
            first = false;
        }
    }
    return true;
}

// TAL: Onset [0x15 Duration] 0x14 Text 0x14 [Text 0x14 ...] 0x00, zero padding between.
bool EdfFileReader::parseTals(const QByteArray& bytes, qint64 record, bool firstSignal)
{
    const QString where = QStringLiteral("bad annotation list in record %1").arg(record);
    const int n = static_cast<int>(bytes.size());
    int pos = 0;
    bool keepingDone = !firstSignal;
    while (pos < n)
    {
        if (bytes[pos] == '\0')
        {
            ++pos;
            continue;
        }
        int end = pos;
        while (end < n && bytes[end] != '\x14' && bytes[end] != '\x15' && bytes[end] != '\0')
            ++end;
        qint64 onset = 0;
        if (end >= n || bytes[end] == '\0' || !EdfFieldText::parseTicks(bytes.mid(pos, end - pos), true, &onset)
            || (bytes[pos] != '+' && bytes[pos] != '-'))
            return refuse(where + QStringLiteral(": invalid onset"));
        qint64 duration = -1;
        if (bytes[end] == '\x15')
        {
            pos = end + 1;
            end = pos;
            while (end < n && bytes[end] != '\x14' && bytes[end] != '\0')
                ++end;
            if (end >= n || bytes[end] != '\x14' || !EdfFieldText::parseTicks(bytes.mid(pos, end - pos), false, &duration))
                return refuse(where + QStringLiteral(": invalid duration"));
        }
        pos = end + 1; // behind the 0x14 that ends onset/duration
        bool firstText = true;
        while (true)
        {
            end = pos;
            while (end < n && bytes[end] != '\x14' && bytes[end] != '\0')
                ++end;
            if (end >= n || bytes[end] != '\x14')
                return refuse(where + QStringLiteral(": unterminated text"));
            const QByteArray raw = bytes.mid(pos, end - pos);
            if (!keepingDone && firstText)
            {
                if (!raw.isEmpty())
                    return refuse(where + QStringLiteral(": no time-keeping annotation"));
                m_recordStarts.append(onset);
                keepingDone = true;
            }
            else if (!raw.isEmpty())
            {
                m_annotations.append(EdfAnnotation{onset, duration, QString::fromUtf8(raw), record});
            }
            firstText = false;
            pos = end + 1;
            if (pos >= n)
                return refuse(where + QStringLiteral(": annotation list not ended by 0x00"));
            if (bytes[pos] == '\0')
                break;
        }
    }
    if (!keepingDone)
        return refuse(where + QStringLiteral(": no time-keeping annotation"));
    return true;
}

QList<int> EdfFileReader::dataSignals() const
{
    QList<int> result;
    for (int i = 0; i < m_signals.size(); ++i)
        if (!m_signals[i].isAnnotation())
            result.append(i);
    return result;
}

qint64 EdfFileReader::samplesInSignal(int signal) const
{
    if (signal < 0 || signal >= m_signals.size())
        return 0;
    return m_recordCount * m_signals[signal].samplesPerRecord;
}

template <typename T>
qint64 EdfFileReader::readSamplesT(int signal, qint64 firstSample, qint64 count, T* out)
{
    if (!isOpen() || signal < 0 || signal >= m_signals.size() || firstSample < 0 || count < 0)
        return -1;
    const EdfSignalHeader& s = m_signals[signal];
    const qint64 perRecord = s.samplesPerRecord;
    count = std::min(count, std::max<qint64>(0, samplesInSignal(signal) - firstSample));
    const int bps = m_header.bdf ? 3 : 2;
    const double gain = s.gain();
    qint64 done = 0;
    while (done < count)
    {
        const qint64 sample = firstSample + done;
        const qint64 record = sample / perRecord;
        const qint64 inRecord = sample % perRecord;
        const qint64 chunk = std::min(perRecord - inRecord, count - done);
        if (!m_file.seek(m_header.headerBytes + record * m_recordBytes + m_offsets[signal] + inRecord * bps))
            return -1;
        m_buffer.resize(chunk * bps);
        if (m_file.read(m_buffer.data(), m_buffer.size()) != m_buffer.size())
            return -1;
        const auto* p = reinterpret_cast<const unsigned char*>(m_buffer.constData());
        for (qint64 k = 0; k < chunk; ++k, p += bps)
        {
            int digital = bps == 3 ? (p[0] | (p[1] << 8) | (p[2] << 16)) : (p[0] | (p[1] << 8));
            const int signBit = bps == 3 ? 0x800000 : 0x8000;
            digital = (digital ^ signBit) - signBit;
            digital = std::clamp(digital, s.digitalMin, s.digitalMax);
            out[done + k] = static_cast<T>(s.physicalMin + (static_cast<double>(digital) - s.digitalMin) * gain);
        }
        done += chunk;
    }
    return done;
}

qint64 EdfFileReader::readSamples(int signal, qint64 firstSample, qint64 count, float* out)
{
    return readSamplesT(signal, firstSample, count, out);
}

qint64 EdfFileReader::readSamples(int signal, qint64 firstSample, qint64 count, double* out)
{
    return readSamplesT(signal, firstSample, count, out);
}

QList<float> EdfFileReader::readSignal(int signal, qint64 firstRecord, qint64 records)
{
    if (signal < 0 || signal >= m_signals.size() || firstRecord < 0 || firstRecord > m_recordCount)
        return {};
    if (records < 0 || records > m_recordCount - firstRecord)
        records = m_recordCount - firstRecord;
    const qint64 perRecord = m_signals[signal].samplesPerRecord;
    QList<float> values(records * perRecord);
    const qint64 read = readSamples(signal, firstRecord * perRecord, records * perRecord, values.data());
    if (read < 0)
        return {};
    values.resize(read);
    return values;
}
