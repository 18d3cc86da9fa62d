#include "app/ui/RecordReviewController.h"

#include "app/ui/RecordingController.h"
#include "formats/EDFReader.h"
#include "services/GlobalConsole.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr int MaxMarkers = 200; // beyond that the window is a wall of lines anyway
constexpr double JumpLead = 0.1; // share of the window shown before an annotation jumped to
}

RecordReviewController::RecordReviewController(QObject* parent)
    : QObject(parent)
{
}

RecordReviewController::~RecordReviewController()
{
    close();
}

QList<double> RecordReviewController::windowLengths()
{
    return { 1, 2, 5, 10, 20, 30, 60, 120, 300, 600 };
}

QList<double> RecordReviewController::scales()
{
    return { 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000 };
}

QString RecordReviewController::fileName() const
{
    return QFileInfo(m_path).fileName();
}

bool RecordReviewController::openFile(const QString& path)
{
    close();
    auto* reader = new EDFReader(path, this);
    if (!reader->open() || reader->getChannelCount() < 1 || !(reader->samplingRate() > 0)) {
        delete reader;
        setMessage(QStringLiteral("Cannot open %1: not a readable EDF/BDF record").arg(QFileInfo(path).fileName()));
        return false;
    }
    m_reader = reader;
    m_path = QFileInfo(path).absoluteFilePath();
    m_rate = reader->samplingRate();
    m_length = reader->lengthSamples();
    QList<edf_annotation_struct> list;
    reader->getAnnotationList(list);
    std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.onset < b.onset; });
    for (const edf_annotation_struct& a : std::as_const(list)) {
        const QString text = QString::fromUtf8(a.annotation).trimmed();
        m_onsetsMs.push_back(a.onset / 10000);
        m_texts.push_back(text);
        m_annotations.append(text, int(std::min<qint64>(a.onset / 10000, std::numeric_limits<int>::max())));
    }
    m_start = 0;
    m_currentAnnotation = -1;
    m_traces.reset(reader->getChannelNames(), m_rate, m_windowLength);
    setMessage(QString());
    Q_EMIT fileChanged();
    readWindow();
    return true;
}

void RecordReviewController::close()
{
    if (!m_reader && m_path.isEmpty())
        return;
    delete m_reader;
    m_reader = nullptr;
    m_path.clear();
    m_rate = 0;
    m_length = 0;
    m_onsetsMs.clear();
    m_texts.clear();
    m_annotations.clear();
    m_traces.clear();
    m_rows.clear();
    Q_EMIT fileChanged();
    Q_EMIT windowChanged();
}

double RecordReviewController::maximumStart() const
{
    return std::max(0.0, durationSeconds() - m_windowLength);
}

void RecordReviewController::setWindowStart(double seconds)
{
    if (!isOpen() || !std::isfinite(seconds))
        return;
    // Whole samples, so the window's columns stay where the file's samples are.
    const double start = std::round(std::clamp(seconds, 0.0, maximumStart()) * m_rate) / m_rate;
    if (start == m_start)
        return;
    m_start = start;
    readWindow();
}

void RecordReviewController::setWindowLength(double seconds)
{
    if (!windowLengths().contains(seconds) || seconds == m_windowLength)
        return;
    const double centre = m_start + m_windowLength / 2;
    m_windowLength = seconds;
    if (!isOpen()) {
        Q_EMIT windowChanged();
        return;
    }
    m_traces.reset(m_traces.channelNames(), m_rate, m_windowLength);
    m_start = std::round(std::clamp(centre - seconds / 2, 0.0, maximumStart()) * m_rate) / m_rate;
    readWindow();
}

void RecordReviewController::setMicrovoltsPerDivision(double microvolts)
{
    if (scales().contains(microvolts) && microvolts != m_microvoltsPerDivision) {
        m_microvoltsPerDivision = microvolts;
        Q_EMIT scaleChanged();
    }
}

void RecordReviewController::scroll(double windows)
{
    setWindowStart(m_start + windows * m_windowLength);
}

void RecordReviewController::zoomTime(int steps)
{
    const QList<double> lengths = windowLengths();
    const qsizetype at = lengths.indexOf(m_windowLength);
    setWindowLength(lengths.value(std::clamp<qsizetype>(at - steps, 0, lengths.size() - 1)));
}

void RecordReviewController::zoomAmplitude(int steps)
{
    const QList<double> all = scales();
    const qsizetype at = all.indexOf(m_microvoltsPerDivision);
    setMicrovoltsPerDivision(all.value(std::clamp<qsizetype>(at - steps, 0, all.size() - 1)));
}

void RecordReviewController::jumpTo(int row)
{
    if (!isOpen() || row < 0 || size_t(row) >= m_onsetsMs.size())
        return;
    m_currentAnnotation = row;
    const double onset = m_onsetsMs[size_t(row)] / 1000.0;
    const double before = m_start;
    setWindowStart(onset - JumpLead * m_windowLength);
    if (m_start == before)
        Q_EMIT windowChanged(); // the same window, another current annotation
}

QString RecordReviewController::windowText() const
{
    if (!isOpen())
        return {};
    const double end = std::min(m_start + m_windowLength, durationSeconds());
    return QStringLiteral("%1 - %2 of %3")
        .arg(RecordingController::formatDuration(m_start), RecordingController::formatDuration(end),
             RecordingController::formatDuration(durationSeconds()));
}

QVariantList RecordReviewController::markers() const
{
    QVariantList shown;
    const qint64 from = qint64(std::floor(m_start * 1000));
    const qint64 to = qint64(std::ceil((m_start + m_windowLength) * 1000));
    auto it = std::lower_bound(m_onsetsMs.begin(), m_onsetsMs.end(), from);
    for (; it != m_onsetsMs.end() && *it <= to && shown.size() < MaxMarkers; ++it) {
        const size_t row = size_t(it - m_onsetsMs.begin());
        shown.append(QVariantMap { { QStringLiteral("position"), (*it / 1000.0 - m_start) / m_windowLength },
                                   { QStringLiteral("text"), m_texts[row] },
                                   { QStringLiteral("row"), int(row) } });
    }
    return shown;
}

// Reads only the window's samples, every channel; past the end of the file stays empty. What
// the last window already holds is moved, not read again, so small steps read little.
void RecordReviewController::readWindow()
{
    const int span = m_traces.capacity();
    const qint64 first = std::llround(m_start * m_rate);
    const int channels = m_traces.channelCount();
    const bool reuse = m_rows.size() == channels && channels > 0 && m_rows.first().size() == span
        && std::abs(first - m_rowsFirst) < span;
    const qint64 shift = reuse ? first - m_rowsFirst : span;
    m_rows.resize(channels);
    for (int c = 0; c < channels; ++c) {
        QList<float>& row = m_rows[c];
        row.resize(span);
        if (shift > 0 && shift < span) {
            std::move(row.begin() + shift, row.end(), row.begin());
            readInto(c, row, int(span - shift), first + span - shift, int(shift));
        } else if (shift < 0) {
            std::move_backward(row.begin(), row.end() + shift, row.end());
            readInto(c, row, 0, first, int(-shift));
        } else if (shift != 0) {
            readInto(c, row, 0, first, span);
        }
    }
    m_rowsFirst = first;
    m_traces.clear();
    m_traces.append(m_rows);
    Q_EMIT windowChanged();
}

void RecordReviewController::readInto(int channel, QList<float>& row, int at, qint64 from, int count)
{
    const QList<float> read = m_reader->getChannelDataFloat(unsigned(channel), unsigned(from), unsigned(count));
    std::copy(read.begin(), read.end(), row.begin() + at);
    std::fill(row.begin() + at + read.size(), row.begin() + at + count, std::numeric_limits<float>::quiet_NaN());
}

void RecordReviewController::setMessage(const QString& message)
{
    if (message == m_message)
        return;
    m_message = message;
    if (!message.isEmpty())
        GlobalConsole::writeLine(QStringLiteral("Review: ") + message);
    Q_EMIT messageChanged();
}
