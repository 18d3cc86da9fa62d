#include "formats/EDFWriter.h"

#include "dsp/Montage.h"
#include "formats/EdfFieldText.h"
#include "services/GlobalConsoleWriter.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr double DefaultPhysicalMin = -32768.0;
constexpr double DefaultPhysicalMax = 32767.0;
constexpr int LabelBytes = 15;
// Annotation times are kept in ms and written in 100 µs units; the codec counts 100 ns.
constexpr qint64 UnitsPerMs = 10;
constexpr qint64 TicksPerUnit = 1000;

qint64 nowMs()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

EDFWriter::EDFWriter() = default;

EDFWriter::EDFWriter(const QString& path, int channelCount, int samplingRate, QMap<QString, float> prefilters,
                     QList<double> ranges)
{
    QList<QString> labels;
    for (int k = 0; k < channelCount; ++k)
        labels.append(QString::number(k + 1));
    setup(path, labels, samplingRate, prefilters, ranges);
}

EDFWriter::EDFWriter(const QString& path, QList<QString> labels, int samplingRate, QMap<QString, float> prefilters,
                     QList<double> ranges)
{
    setup(path, labels, samplingRate, prefilters, ranges);
}

EDFWriter::~EDFWriter()
{
    if (m_file.isOpen())
        m_file.close();
}

void EDFWriter::setup(const QString& path, QList<QString> labels, int samplingRate, QMap<QString, float> prefilters,
                      QList<double> ranges)
{
    setPath(path);
    m_labels = labels;
    m_prefilters = QSharedPointer<QMap<QString, float>>::create(prefilters);
    setInternalBuffSize(samplingRate, static_cast<unsigned>(labels.size()));
    setChannelPhysicalDimensions(ranges);
    open();
}

bool EDFWriter::prepareWriter(const QString& path, QSharedPointer<Montage> montage, int samplingRate)
{
    setPath(path);
    m_handle = -1;
    m_fillPosition = 0;
    m_recordBuffer.fill(0.0);
    if (montage.isNull()) {
        kxDebug() << QString("EDFWriter: no montage for %1").arg(path);
        return false;
    }
    setChannelLabels(montage);
    setInternalBuffSize(samplingRate, static_cast<unsigned>(montage->size()));
    return open();
}

void EDFWriter::setInternalBuffSize(int samplesPerRecord, unsigned channelCount)
{
    m_samplesPerRecord = std::max(samplesPerRecord, 0);
    m_channelCount = static_cast<int>(channelCount);
    m_recordBuffer.resize(static_cast<qsizetype>(m_samplesPerRecord) * m_channelCount, 0.0);
    m_channelStarts.clear();
    for (int k = 0; k < m_channelCount; ++k)
        m_channelStarts.append(m_recordBuffer.constData() + static_cast<qsizetype>(k) * m_samplesPerRecord);
}

void EDFWriter::setChannelPhysicalDimensions(QList<double> ranges)
{
    m_physicalRanges.clear();
    for (double r : ranges)
        m_physicalRanges.append({-r, r});
}

void EDFWriter::setChannelPhysicalDimensions(QList<std::pair<double, double>> ranges)
{
    m_physicalRanges = ranges;
}

void EDFWriter::setChannelLabels(QList<QString> labels)
{
    m_labels = labels;
}

void EDFWriter::setChannelLabels(QSharedPointer<Montage> montage)
{
    if (!montage.isNull())
        m_labels = montage->getChannelNames();
}

void EDFWriter::setPath(const QString& path)
{
    m_path = path;
    m_bdf = isFilenameBDF(path);
}

bool EDFWriter::isFilenameBDF(const QString& name)
{
    return name.endsWith(QLatin1String(".bdf"), Qt::CaseInsensitive);
}

bool EDFWriter::open()
{
    if (m_file.isOpen())
        m_file.close();
    m_open = false;
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QFile plain(m_path);
    if (!plain.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        kxDebug() << QString("EDFWriter: cannot create %1: %2").arg(m_path, plain.errorString());
        return false;
    }
    const QDateTime start = QDateTime::currentDateTime();
    m_segmentStart = start.toMSecsSinceEpoch();
    emit recordStarted(m_path);
    plain.close();

    // Start moment = segment start, so annotation onsets count from the header's start.
    EdfFileHeader identity;
    identity.startDateTime = start;
    identity.recordDurationTicks = EdfFieldText::TicksPerSecond;
    m_startDate = start.date();
    const auto format = m_bdf ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf;
    m_handle = m_file.open(m_path, format, identity, signalHeaders()) ? 0 : -1;
    if (m_handle < 0) {
        kxDebug() << QString("EDFWriter: cannot open %1 for recording").arg(m_path);
        return false;
    }
    m_open = true;
    updatePatientField();
    updateRecordingField();
    emit recordStarted(m_path);
    return true;
}

QList<EdfSignalHeader> EDFWriter::signalHeaders() const
{
    const QString prefilter = prefilterText();
    QList<EdfSignalHeader> headers;
    for (int k = 0; k < m_channelCount; ++k) {
        EdfSignalHeader s;
        s.label = cutLabel(k < m_labels.size() ? m_labels[k] : QString::number(k + 1));
        s.physicalDimension = QStringLiteral("uV");
        if (k < m_physicalRanges.size()) {
            s.physicalMin = std::min(m_physicalRanges[k].first, m_physicalRanges[k].second);
            s.physicalMax = std::max(m_physicalRanges[k].first, m_physicalRanges[k].second);
        } else {
            s.physicalMin = DefaultPhysicalMin;
            s.physicalMax = DefaultPhysicalMax;
        }
        // BDF too: only the 16-bit span of its 24-bit samples is used.
        s.digitalMin = -32768;
        s.digitalMax = 32767;
        s.prefiltering = prefilter;
        s.samplesPerRecord = m_samplesPerRecord;
        headers.append(s);
    }
    return headers;
}

QString EDFWriter::prefilterText() const
{
    if (m_prefilters.isNull() || m_prefilters->isEmpty())
        return QStringLiteral("0");
    QString text;
    for (auto it = m_prefilters->constBegin(); it != m_prefilters->constEnd(); ++it)
        text += it.key() + QLatin1Char(':') + QString::number(it.value(), 'f', 1) + QStringLiteral("Hz ");
    return QString::fromLatin1(text.toLatin1());
}

QString EDFWriter::cutLabel(const QString& label)
{
    const QByteArray utf8 = label.toUtf8();
    if (utf8.size() <= LabelBytes)
        return label;
    int cut = LabelBytes;
    // Back off continuation bytes so no character is split.
    while (cut > 0 && (static_cast<unsigned char>(utf8[cut]) & 0xC0) == 0x80)
        --cut;
    return QString::fromUtf8(utf8.left(cut));
}

void EDFWriter::writeData(QList<QList<float>> channels)
{
    if (channels.size() != m_channelCount) {
        kxDebug() << QStringList{"EDFWriter: Wrong number of channels provided -", QString::number(channels.size()),
                                 ", should be", QString::number(m_channelCount)}
                         .join(' ');
        return;
    }
    if (m_channelCount == 0)
        return;
    const int n = static_cast<int>(channels.first().size());
    QList<float> flat;
    flat.reserve(static_cast<qsizetype>(n) * m_channelCount);
    for (int k = 0; k < m_channelCount; ++k) {
        if (channels[k].size() != n) {
            kxDebug() << QStringList{"EDFWriter: non homogenous data on channel", QString::number(k),
                                     ", it has length", QString::number(channels[k].size()), ", should be",
                                     QString::number(n)}
                             .join(' ');
            return;
        }
        flat.append(channels[k]);
    }
    writeData(n, flat.data());
}

void EDFWriter::writeData(QList<float> flat)
{
    if (m_channelCount <= 0)
        return;
    writeData(static_cast<int>(flat.size() / m_channelCount), flat.data());
}

void EDFWriter::writeData(int samplesPerChannel, float* data)
{
    if (!data || samplesPerChannel <= 0 || m_channelCount <= 0 || m_samplesPerRecord <= 0)
        return;
    // Blocks longer than a record are split over as many records as they fill.
    int done = 0;
    while (done < samplesPerChannel) {
        const int take = std::min(m_samplesPerRecord - m_fillPosition, samplesPerChannel - done);
        copyNegated(data, samplesPerChannel, done, take);
        m_fillPosition += take;
        done += take;
        if (m_fillPosition == m_samplesPerRecord) {
            ++m_recordsWritten;
            emit recordDurationChanged(m_recordsWritten);
            writeRecordBuffer();
            m_fillPosition = 0;
        }
    }
}

void EDFWriter::copyNegated(const float* data, int samplesPerChannel, int from, int count)
{
    for (int k = 0; k < m_channelCount; ++k) {
        const float* source = data + static_cast<qsizetype>(k) * samplesPerChannel + from;
        double* target = m_recordBuffer.data() + static_cast<qsizetype>(k) * m_samplesPerRecord + m_fillPosition;
        for (int i = 0; i < count; ++i)
            target[i] = -1.0 * static_cast<double>(source[i]);
    }
}

void EDFWriter::writeRecordBuffer()
{
    if (m_open)
        m_file.writeRecord(m_channelStarts);
}

void EDFWriter::writeRemainderToFile()
{
    if (m_fillPosition <= 0)
        return;
    for (int k = 0; k < m_channelCount; ++k) {
        double* channel = m_recordBuffer.data() + static_cast<qsizetype>(k) * m_samplesPerRecord;
        std::fill(channel + m_fillPosition, channel + m_samplesPerRecord, 0.0);
    }
    writeRecordBuffer();
}

void EDFWriter::clearShift()
{
    writeRemainderToFile();
    m_fillPosition = 0;
    m_recordsWritten = 0;
}

qint64 EDFWriter::recordingTimeMs() const
{
    return m_pausedShift + (nowMs() - m_segmentStart);
}

int EDFWriter::addAnnotation(QString text, int onsetMs, int durationMs)
{
    const qint64 onset = onsetMs < 0 ? recordingTimeMs() : onsetMs;
    const qint64 duration = std::max(durationMs, 0);
    m_file.addAnnotation(onset * UnitsPerMs * TicksPerUnit, duration * UnitsPerMs * TicksPerUnit, text);
    return static_cast<int>(onset);
}

std::pair<bool, qint64> EDFWriter::addAnnotationR(QString text)
{
    if (m_segmentStart == 0)
        return {false, 0};
    m_lastAnnotationOnset = recordingTimeMs();
    // The text passes through the local 8-bit encoding on purpose.
    const QString local = QString::fromLocal8Bit(text.toLocal8Bit());
    const bool ok = m_file.addAnnotation(m_lastAnnotationOnset * UnitsPerMs * TicksPerUnit, TicksPerUnit, local);
    return {ok, m_lastAnnotationOnset};
}

void EDFWriter::pauseRecord()
{
    // A second pause, or one before any start, must not add to the recording time.
    if (m_paused || m_segmentStart == 0)
        return;
    m_pausedShift += nowMs() - m_segmentStart;
    m_paused = true;
}

void EDFWriter::continueRecord()
{
    // Without a pause the running segment would be lost from the recording time.
    if (!m_paused)
        return;
    m_segmentStart = nowMs();
    m_paused = false;
}

void EDFWriter::takeStartTime(qint64 msSinceEpoch)
{
    m_segmentStart = msSinceEpoch;
}

void EDFWriter::resetStartTime()
{
    m_segmentStart = 0;
}

bool EDFWriter::close()
{
    const bool ok = m_file.close();
    m_open = false;
    emit recordStopped(m_path);
    return ok;
}

void EDFWriter::setPatientInfo(PatientInfo& info)
{
    if (!m_open)
        return;
    setPatientGender(info.gender);
    setPatientData(info.birthYear, info.birthMonth, info.birthDay);
    setPatientName(info.patientName);
    setEquipmentInfo(info.equipment);
    setPatientCode(info.patientCode);
    setPatientAdditional(info.patientAdditional);
}

void EDFWriter::setPatientName(const QString& name)
{
    m_patientName = name;
    updatePatientField();
}

void EDFWriter::setPatientCode(const QString& code)
{
    m_patientCode = code;
    updatePatientField();
}

void EDFWriter::setPatientAdditional(const QString& additional)
{
    m_patientAdditional = additional;
    updatePatientField();
}

void EDFWriter::setPatientGender(int gender)
{
    m_gender = gender == 1 ? QLatin1Char('M') : gender == 2 ? QLatin1Char('F') : QLatin1Char('X');
    updatePatientField();
}

void EDFWriter::setPatientData(int year, int month, int day)
{
    m_birthDate = QDate(year, month, day);
    updatePatientField();
}

void EDFWriter::setEquipmentInfo(const QString& equipment)
{
    m_equipment = equipment;
    updateRecordingField();
}

void EDFWriter::updatePatientField()
{
    if (!m_open)
        return;
    const auto local = [](const QString& s) { return QString::fromLocal8Bit(s.toLocal8Bit()); };
    m_file.updatePatientField(EdfFileHeader::formatPatientField(local(m_patientCode), m_gender, m_birthDate,
                                                                local(m_patientName), local(m_patientAdditional)));
}

void EDFWriter::updateRecordingField()
{
    if (!m_open)
        return;
    m_file.updateRecordingField(EdfFileHeader::formatRecordingField(
        m_startDate, QString(), QString(), QString::fromLocal8Bit(m_equipment.toLocal8Bit())));
}
