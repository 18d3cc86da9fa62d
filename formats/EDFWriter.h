#pragma once

#include "formats/EdfFileWriter.h"
#include "formats/PatientInfo.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QString>

#include <utility>

class Montage;

// Records multichannel EEG (µV) into a continuous EDF+ file, or BDF+ when the name ends in
// ".bdf", with 1 s data records and an annotation signal. Blocks of any length are gathered
// into whole records; annotation onsets run on recording time, pauses excluded.
// The file stores the opposite polarity of the values handed in.
class EDFWriter : public QObject
{
    Q_OBJECT

public:
    EDFWriter();
    EDFWriter(const QString& path, int channelCount, int samplingRate, QMap<QString, float> prefilters,
              QList<double> ranges);
    EDFWriter(const QString& path, QList<QString> labels, int samplingRate, QMap<QString, float> prefilters,
              QList<double> ranges);
    ~EDFWriter() override;

    bool prepareWriter(const QString& path, QSharedPointer<Montage> montage, int samplingRate);
    void setInternalBuffSize(int samplesPerRecord, unsigned channelCount);
    // Each value r becomes the range (-r, r).
    void setChannelPhysicalDimensions(QList<double> ranges);
    void setChannelPhysicalDimensions(QList<std::pair<double, double>> ranges);
    void setChannelLabels(QList<QString> labels);
    void setChannelLabels(QSharedPointer<Montage> montage);

    bool open();
    bool isFileOpen() const { return m_open; }
    // A write failed (a full disk): the file keeps its whole records and takes no more.
    bool hasFailed() const { return m_file.hasFailed(); }
    QString errorString() const { return m_file.errorString(); }
    QString path() const { return m_path; }
    void setPath(const QString& path);
    QString getPatientName() const { return m_patientName; }
    float getDurationSeconds() const { return static_cast<float>(m_recordsWritten); }

    void writeData(QList<QList<float>> channels);
    // Channel-major: all samples of channel 0, then channel 1, ...
    void writeData(QList<float> flat);
    void writeData(int samplesPerChannel, float* data);

    // onsetMs < 0: the current recording time. Returns the onset used.
    int addAnnotation(QString text, int onsetMs, int durationMs);
    // At the current recording time; (false, 0) when no start time is set.
    std::pair<bool, qint64> addAnnotationR(QString text);

    void pauseRecord();
    void continueRecord();
    void takeStartTime(qint64 msSinceEpoch);
    void resetStartTime();
    // Writes the partial record (zero-padded) and restarts the record count.
    void clearShift();
    // Does not write the partial record; call clearShift() first to keep it.
    bool close();

    // Does nothing unless the file is open.
    void setPatientInfo(PatientInfo& info);

    static bool isFilenameBDF(const QString& name);

signals:
    void recordStarted(QString path);
    void recordStopped(QString path);
    void recordDurationChanged(int seconds);

protected:
    void setPatientName(const QString& name);
    void setPatientCode(const QString& code);
    void setPatientAdditional(const QString& additional);
    // 1 male, 2 female, anything else unknown.
    void setPatientGender(int gender);
    void setPatientData(int year, int month, int day);
    void setEquipmentInfo(const QString& equipment);
    void writeRemainderToFile();

private:
    void setup(const QString& path, QList<QString> labels, int samplingRate, QMap<QString, float> prefilters,
               QList<double> ranges);
    QList<EdfSignalHeader> signalHeaders() const;
    QString prefilterText() const;
    static QString cutLabel(const QString& label);
    void copyNegated(const float* data, int samplesPerChannel, int from, int count);
    void writeRecordBuffer();
    qint64 recordingTimeMs() const;
    void updatePatientField();
    void updateRecordingField();

    bool m_open = false;
    QString m_path;
    QString m_patientName;
    QString m_patientCode;
    QString m_patientAdditional;
    QList<QString> m_labels;
    int m_handle = -1;
    int m_samplesPerRecord = 0;
    int m_fillPosition = 0;
    int m_channelCount = 0;
    int m_recordsWritten = 0;
    qint64 m_pausedShift = 0;
    qint64 m_segmentStart = 0;
    qint64 m_lastAnnotationOnset = 0;
    QList<double> m_recordBuffer;
    QSharedPointer<QMap<QString, float>> m_prefilters;
    bool m_paused = false;
    bool m_bdf = false;
    QList<std::pair<double, double>> m_physicalRanges;

    EdfFileWriter m_file;
    QList<const double*> m_channelStarts; // into m_recordBuffer, one per channel
    QChar m_gender = QLatin1Char('X');
    QDate m_birthDate;
    QString m_equipment;
    QDate m_startDate;
};
