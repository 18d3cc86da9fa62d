#pragma once

#include "app/ui/AnnotationListModel.h"
#include "app/ui/TraceBuffer.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>

#include <vector>

class EDFReader;

// Looks through a whole record without playing it: a window of chosen length over every
// channel, moved through the file and zoomed in time and amplitude, with the annotations as a
// list and as markers. Only the window is read from the file, so a day-long record opens at once.
class RecordReviewController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen NOTIFY fileChanged)
    Q_PROPERTY(QString path READ path NOTIFY fileChanged)
    Q_PROPERTY(QString fileName READ fileName NOTIFY fileChanged)
    Q_PROPERTY(double durationSeconds READ durationSeconds NOTIFY fileChanged)
    Q_PROPERTY(double sampleRate READ sampleRate NOTIFY fileChanged)
    Q_PROPERTY(QStringList channelNames READ channelNames NOTIFY fileChanged)
    Q_PROPERTY(TraceBuffer* traces READ traces CONSTANT)
    Q_PROPERTY(AnnotationListModel* annotations READ annotations CONSTANT)
    // Seconds from the start of the file.
    Q_PROPERTY(double windowStart READ windowStart WRITE setWindowStart NOTIFY windowChanged)
    Q_PROPERTY(double windowLength READ windowLength WRITE setWindowLength NOTIFY windowChanged)
    Q_PROPERTY(double maximumStart READ maximumStart NOTIFY windowChanged)
    Q_PROPERTY(QList<double> windowLengths READ windowLengths CONSTANT)
    Q_PROPERTY(QString windowText READ windowText NOTIFY windowChanged)
    Q_PROPERTY(double microvoltsPerDivision READ microvoltsPerDivision WRITE setMicrovoltsPerDivision
                   NOTIFY scaleChanged)
    Q_PROPERTY(QList<double> scales READ scales CONSTANT)
    // The annotations inside the window: {"position": 0..1 across it, "text", "row"}.
    Q_PROPERTY(QVariantList markers READ markers NOTIFY windowChanged)
    // Row of the annotation jumped to last, -1 for none.
    Q_PROPERTY(int currentAnnotation READ currentAnnotation NOTIFY windowChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    explicit RecordReviewController(QObject* parent = nullptr);
    ~RecordReviewController() override;

    bool isOpen() const { return m_reader != nullptr; }
    QString path() const { return m_path; }
    QString fileName() const;
    double durationSeconds() const { return m_rate > 0 ? m_length / m_rate : 0.0; }
    double sampleRate() const { return m_rate; }
    QStringList channelNames() const { return m_traces.channelNames(); }
    TraceBuffer* traces() { return &m_traces; }
    AnnotationListModel* annotations() { return &m_annotations; }
    double windowStart() const { return m_start; }
    void setWindowStart(double seconds);
    double windowLength() const { return m_windowLength; }
    // One of windowLengths(); the window keeps its centre.
    void setWindowLength(double seconds);
    double maximumStart() const;
    static QList<double> windowLengths();
    QString windowText() const;
    double microvoltsPerDivision() const { return m_microvoltsPerDivision; }
    void setMicrovoltsPerDivision(double microvolts);
    static QList<double> scales();
    QVariantList markers() const;
    int currentAnnotation() const { return m_currentAnnotation; }
    QString message() const { return m_message; }

    // False, with the reason in message, when the file cannot be read.
    Q_INVOKABLE bool openFile(const QString& path);
    Q_INVOKABLE void close();
    // Moves the window by a share of its length (1 = a whole window, negative = back).
    Q_INVOKABLE void scroll(double windows);
    // Positive steps zoom in (a shorter window), negative out, through windowLengths().
    Q_INVOKABLE void zoomTime(int steps);
    // Positive steps enlarge the traces (fewer microvolts per division), through scales().
    Q_INVOKABLE void zoomAmplitude(int steps);
    // Shows the annotation of that row a little after the window's left edge.
    Q_INVOKABLE void jumpTo(int row);

Q_SIGNALS:
    void fileChanged();
    void windowChanged();
    void scaleChanged();
    void messageChanged();

private:
    void readWindow();
    void readInto(int channel, QList<float>& row, int at, qint64 from, int count);
    void setMessage(const QString& message);

    EDFReader* m_reader = nullptr;
    QString m_path;
    double m_rate = 0;
    qint64 m_length = 0; // samples per channel
    double m_start = 0;
    double m_windowLength = 10;
    double m_microvoltsPerDivision = 100;
    int m_currentAnnotation = -1;
    QString m_message;
    TraceBuffer m_traces;
    AnnotationListModel m_annotations;
    std::vector<qint64> m_onsetsMs; // of the annotation rows, ascending
    std::vector<QString> m_texts;
    QList<QList<float>> m_rows; // the window as read, reused
    qint64 m_rowsFirst = 0;     // file sample of m_rows' first column
};
