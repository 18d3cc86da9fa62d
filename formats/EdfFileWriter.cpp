#include "formats/EdfFileWriter.h"

#include <QtEndian>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "formats/EdfFieldText.h"
#include "services/GlobalConsoleWriter.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {
constexpr int RecordCountOffset = 236;
}

EdfFileWriter::~EdfFileWriter()
{
    if (isOpen())
        close();
}

bool EdfFileWriter::fail(const QString& what)
{
    kxDebug() << QString("EdfFileWriter: %1 (%2)").arg(what, m_file.fileName());
    m_failed = true;
    m_error = what;
    return false;
}

bool EdfFileWriter::validate(const EdfFileHeader& identity, const QList<EdfSignalHeader>& dataSignals)
{
    const int year = identity.startDateTime.date().year();
    if (!identity.startDateTime.isValid() || year < 1985 || year > 2084)
        return fail(QStringLiteral("start date must lie in 1985..2084"));
    QByteArray text;
    if (identity.recordDurationTicks <= 0
        || EdfFieldText::formatTicks(identity.recordDurationTicks, false).size() > 8)
        return fail(QStringLiteral("record duration does not fit the header"));
    if (dataSignals.size() > MaxSignals)
        return fail(QStringLiteral("too many signals"));
    const int limit = m_bdf ? 8388607 : 32767;
    qint64 bytes = m_bdf ? AnnotationBytesBdf : AnnotationBytesEdf;
    for (const EdfSignalHeader& s : dataSignals)
    {
        if (s.samplesPerRecord < 1 || s.digitalMax <= s.digitalMin || s.digitalMax > limit
            || s.digitalMin < -limit - 1)
            return fail(QStringLiteral("bad samples per record or digital range for %1").arg(s.label));
        QByteArray maxText;
        if (!EdfFieldText::formatNumber(s.physicalMin, -1, &text)
            || !EdfFieldText::formatNumber(s.physicalMax, +1, &maxText) || text == maxText)
            return fail(QStringLiteral("bad physical range for %1").arg(s.label));
        bytes += static_cast<qint64>(s.samplesPerRecord) * (m_bdf ? 3 : 2);
    }
    if (bytes > MaxRecordBytes)
        return fail(QStringLiteral("data record larger than 10 MiB"));
    return true;
}

bool EdfFileWriter::open(const QString& path, Format format, const EdfFileHeader& identity,
                         const QList<EdfSignalHeader>& dataSignals)
{
    if (isOpen())
        close();
    m_file.setFileName(path);
    m_failed = false;
    m_bdf = format == Format::Bdf;
    if (!validate(identity, dataSignals))
        return false;

    m_header = identity;
    m_header.bdf = m_bdf;
    m_header.reserved = m_bdf ? QStringLiteral("BDF+C") : QStringLiteral("EDF+C");
    m_header.signalCount = static_cast<int>(dataSignals.size()) + 1;
    m_header.headerBytes = 256 * (m_header.signalCount + 1);
    m_header.recordCount = -1;
    if (m_header.recording.trimmed().isEmpty())
        m_header.recording = EdfFileHeader::formatRecordingField(identity.startDateTime.date(), {}, {}, {});
    const QTime time = identity.startDateTime.time();
    m_startOffsetTicks = static_cast<qint64>(time.msec()) * 10000;
    m_header.startDateTime = QDateTime(identity.startDateTime.date(),
                                       QTime(time.hour(), time.minute(), time.second()));

    m_signals = dataSignals;
    for (EdfSignalHeader& s : m_signals) // convert with the limits a reader will see
    {
        QByteArray text;
        EdfFieldText::formatNumber(s.physicalMin, -1, &text);
        s.physicalMin = text.toDouble();
        EdfFieldText::formatNumber(s.physicalMax, +1, &text);
        s.physicalMax = text.toDouble();
    }
    m_signals.append(EdfSignalHeader::annotationSignal(m_bdf, m_bdf ? AnnotationBytesBdf : AnnotationBytesEdf));
    m_offsets.clear();
    m_zeroDigital.clear();
    const int bps = m_bdf ? 3 : 2;
    int offset = 0;
    for (const EdfSignalHeader& s : std::as_const(m_signals))
    {
        m_offsets.append(offset);
        offset += s.samplesPerRecord * bps;
        const double zero = std::round(s.digitalMin - s.physicalMin / s.gain());
        m_zeroDigital.append(static_cast<int>(std::clamp(zero, double(s.digitalMin), double(s.digitalMax))));
    }
    m_record = QByteArray(offset, '\0');
    m_pending.clear();
    m_records = 0;
    m_ticksSinceCount = 0;

    QDir().mkpath(QFileInfo(path).absolutePath());
    // Every record goes to the file as soon as it is complete; a buffer would only copy it.
    // Readable too: closing places late annotations into records already written.
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Truncate | QIODevice::Unbuffered))
        return fail(QStringLiteral("cannot open for writing: %1").arg(m_file.errorString()));
    const QByteArray header = buildHeader();
    if (m_file.write(header) != header.size() || !m_file.flush())
    {
        fail(QStringLiteral("cannot write the header"));
        m_file.close();
        return false;
    }
    return true;
}

QByteArray EdfFileWriter::buildHeader() const
{
    using T = EdfFieldText;
    QByteArray h;
    h.reserve(m_header.headerBytes);
    h.append(m_bdf ? QByteArray("\xff" "BIOSEMI") : QByteArray("0       "));
    h.append(T::fixed(m_header.patient, 80));
    h.append(T::fixed(m_header.recording, 80));
    h.append(T::fixed(m_header.startDateTime.toString(QStringLiteral("dd.MM.yy")), 8));
    h.append(T::fixed(m_header.startDateTime.toString(QStringLiteral("hh.mm.ss")), 8));
    h.append(T::fixed(QString::number(m_header.headerBytes), 8));
    h.append(T::fixed(m_header.reserved, 44));
    h.append(T::fixed(QString::number(m_header.recordCount), 8));
    h.append(T::fixed(QString::fromLatin1(T::formatTicks(m_header.recordDurationTicks, false)), 8));
    h.append(T::fixed(QString::number(m_header.signalCount), 4));
    auto each = [&](int width, auto text) {
        for (const EdfSignalHeader& s : m_signals)
            h.append(T::fixed(text(s), width));
    };
    auto number = [](double v, int dir) {
        QByteArray out;
        EdfFieldText::formatNumber(v, dir, &out);
        return QString::fromLatin1(out);
    };
    each(16, [](const EdfSignalHeader& s) { return s.label; });
    each(80, [](const EdfSignalHeader& s) { return s.transducer; });
    each(8, [](const EdfSignalHeader& s) { return s.physicalDimension; });
    each(8, [&](const EdfSignalHeader& s) { return number(s.physicalMin, -1); });
    each(8, [&](const EdfSignalHeader& s) { return number(s.physicalMax, +1); });
    each(8, [](const EdfSignalHeader& s) { return QString::number(s.digitalMin); });
    each(8, [](const EdfSignalHeader& s) { return QString::number(s.digitalMax); });
    each(80, [](const EdfSignalHeader& s) { return s.prefiltering; });
    each(8, [](const EdfSignalHeader& s) { return QString::number(s.samplesPerRecord); });
    each(32, [](const EdfSignalHeader& s) { return s.reserved; });
    return h;
}

void EdfFileWriter::putSample(int offset, int digital)
{
    char* p = m_record.data() + offset;
    p[0] = static_cast<char>(digital & 0xff);
    p[1] = static_cast<char>((digital >> 8) & 0xff);
    if (m_bdf)
        p[2] = static_cast<char>((digital >> 16) & 0xff);
}

namespace {

// Physical to digital: round half away from zero, clipped to the digital range (NaN gives
// the minimum). Written out by hand: the library round() call was most of a record's cost.
template <typename T, int Bytes>
void encode(const T* values, int count, const EdfSignalHeader& s, char* out)
{
    const double perUnit = 1.0 / s.gain();
    const double dmin = s.digitalMin;
    const double dmax = s.digitalMax;
    for (int k = 0; k < count; ++k, out += Bytes)
    {
        // std::max(dmin, NaN) is dmin.
        const double d = std::min(std::max(dmin, dmin + (static_cast<double>(values[k]) - s.physicalMin) * perUnit), dmax);
        const int digital = static_cast<int>(d + std::copysign(0.5, d));
        if constexpr (Bytes == 2) {
            // One little-endian 16-bit store lets the loop vectorise.
            const qint16 little = qToLittleEndian(static_cast<qint16>(digital));
            std::memcpy(out, &little, 2);
        } else {
            out[0] = static_cast<char>(digital & 0xff);
            out[1] = static_cast<char>((digital >> 8) & 0xff);
            out[2] = static_cast<char>((digital >> 16) & 0xff);
        }
    }
}

} // namespace

template <typename T>
bool EdfFileWriter::writeRecordT(const QList<const T*>& physicalPerSignal)
{
    if (!isOpen() || m_failed)
        return false;
    const int dataSignals = static_cast<int>(m_signals.size()) - 1;
    if (physicalPerSignal.size() != dataSignals)
        return fail(QStringLiteral("writeRecord needs %1 signals, got %2").arg(dataSignals).arg(physicalPerSignal.size()));
    char* record = m_record.data();
    for (int i = 0; i < dataSignals; ++i)
    {
        const EdfSignalHeader& s = m_signals[i];
        const T* values = physicalPerSignal[i];
        if (!values)
            return fail(QStringLiteral("writeRecord got no values for signal %1").arg(i));
        if (m_bdf)
            encode<T, 3>(values, s.samplesPerRecord, s, record + m_offsets[i]);
        else
            encode<T, 2>(values, s.samplesPerRecord, s, record + m_offsets[i]);
    }
    return finishRecord();
}

bool EdfFileWriter::writeRecord(const QList<const float*>& physicalPerSignal)
{
    return writeRecordT(physicalPerSignal);
}

bool EdfFileWriter::writeRecord(const QList<const double*>& physicalPerSignal)
{
    return writeRecordT(physicalPerSignal);
}

void EdfFileWriter::fillAnnotations()
{
    const int start = m_offsets.last();
    const int size = static_cast<int>(m_record.size()) - start;
    char* area = m_record.data() + start;
    std::fill(area, area + size, '\0');
    QByteArray keeping = EdfFieldText::formatTicks(m_startOffsetTicks + m_records * m_header.recordDurationTicks, true);
    keeping.append("\x14\x14", 2).append('\0');
    std::copy(keeping.cbegin(), keeping.cend(), area);
    int pos = static_cast<int>(keeping.size());
    while (!m_pending.isEmpty() && pos + m_pending.head().size() <= size)
    {
        const QByteArray tal = m_pending.dequeue();
        std::copy(tal.cbegin(), tal.cend(), area + pos);
        pos += static_cast<int>(tal.size());
    }
}

bool EdfFileWriter::finishRecord()
{
    fillAnnotations();
    errno = 0;
    if (m_file.write(m_record) != m_record.size() || !m_file.flush()) {
        // A short write sets no error: the file could not grow.
        fail(QStringLiteral("cannot write a data record: %1")
                 .arg(errno ? QString::fromLocal8Bit(std::strerror(errno)) : QStringLiteral("no space left")));
        cutPartialRecord();
        return false;
    }
    ++m_records;
    m_ticksSinceCount += m_header.recordDurationTicks;
    if (m_ticksSinceCount >= CountUpdateTicks)
    {
        m_ticksSinceCount = 0;
        if (!writeAt(RecordCountOffset, EdfFieldText::fixed(QString::number(m_records), 8)))
            return false;
    }
    return true;
}

// What a failed write left of a record goes, so the file ends with its last whole record.
void EdfFileWriter::cutPartialRecord()
{
    const qint64 whole = m_header.headerBytes + m_records * m_record.size();
    if (m_file.handle() < 0 || ::ftruncate(m_file.handle(), whole) != 0)
        kxDebug() << QString("EdfFileWriter: cannot cut the partial record (%1)").arg(m_file.fileName());
    m_file.seek(whole);
}

bool EdfFileWriter::writeAt(qint64 position, const QByteArray& bytes)
{
    // The file is flushed after every record, so a positional write can go straight to the
    // descriptor: one system call instead of seek, write, seek.
    if (m_file.handle() >= 0 && m_file.bytesToWrite() == 0) {
        if (::pwrite(m_file.handle(), bytes.constData(), size_t(bytes.size()), position) == bytes.size())
            return true;
        return fail(QStringLiteral("cannot update the header: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
    }
    const qint64 end = m_file.pos();
    if (!m_file.seek(position) || m_file.write(bytes) != bytes.size() || !m_file.seek(end) || !m_file.flush())
        return fail(QStringLiteral("cannot update the header: %1").arg(m_file.errorString()));
    return true;
}

// Each TAL carries its own onset, so any record's annotation space can hold it. The records
// are rewritten in place, the newest first, in their unused (zero) tail.
void EdfFileWriter::placePendingInWrittenRecords()
{
    const qint64 area = m_record.size() - m_offsets.last();
    QByteArray space(int(area), '\0');
    for (qint64 r = m_records - 1; r >= 0 && !m_pending.isEmpty(); --r) {
        const qint64 at = m_header.headerBytes + r * m_record.size() + m_offsets.last();
        if (::pread(m_file.handle(), space.data(), size_t(area), at) != area)
            break;
        // The used part ends after the last TAL's terminating zero; the signal's last byte stays 0.
        qint64 used = area - 1;
        while (used > 0 && space[int(used - 1)] == '\0')
            --used;
        qint64 free = used == 0 ? 0 : used + 1;
        bool changed = false;
        while (!m_pending.isEmpty() && free + m_pending.head().size() < area) {
            const QByteArray tal = m_pending.dequeue();
            std::copy(tal.cbegin(), tal.cend(), space.begin() + free);
            free += tal.size();
            changed = true;
        }
        if (changed && ::pwrite(m_file.handle(), space.constData(), size_t(area), at) != area)
            break;
    }
    if (!m_pending.isEmpty())
        kxDebug() << QString("EdfFileWriter: %1 annotations found no room and are not in %2")
                         .arg(m_pending.size())
                         .arg(m_file.fileName());
}

bool EdfFileWriter::addAnnotation(qint64 onsetTicks, qint64 durationTicks, const QString& text)
{
    if (!isOpen() || m_failed)
        return false;
    QByteArray utf8 = text.toUtf8();
    for (char& c : utf8) // 0x14 separates texts; other control bytes are not allowed
        if (static_cast<unsigned char>(c) < 32 && c != '\t' && c != '\n' && c != '\r')
            c = ' ';
    if (utf8.size() > MaxAnnotationTextBytes)
    {
        int cut = MaxAnnotationTextBytes;
        while (cut > 0 && (static_cast<unsigned char>(utf8[cut]) & 0xC0) == 0x80)
            --cut;
        utf8.truncate(cut);
    }
    QByteArray tal = EdfFieldText::formatTicks(m_startOffsetTicks + onsetTicks, true);
    if (durationTicks >= 0)
        tal.append('\x15').append(EdfFieldText::formatTicks(durationTicks, false));
    tal.append('\x14').append(utf8).append('\x14').append('\0');
    m_pending.enqueue(tal);
    return true;
}

bool EdfFileWriter::updatePatientField(const QString& patient)
{
    if (!isOpen() || m_failed)
        return false;
    m_header.patient = patient;
    return writeAt(8, EdfFieldText::fixed(patient, 80));
}

bool EdfFileWriter::updateRecordingField(const QString& recording)
{
    if (!isOpen() || m_failed)
        return false;
    m_header.recording = recording;
    return writeAt(88, EdfFieldText::fixed(recording, 80));
}

bool EdfFileWriter::close()
{
    if (!isOpen())
        return false;
    const bool failedBefore = m_failed;
    placePendingInWrittenRecords();
    // Rewriting bytes in place needs no free space: even after a failure the count is set.
    const bool ok = writeAt(RecordCountOffset, EdfFieldText::fixed(QString::number(m_records), 8)) && !failedBefore;
    m_header.recordCount = m_records;
    m_file.close();
    m_pending.clear();
    return ok;
}
