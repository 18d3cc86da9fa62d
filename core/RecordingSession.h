#pragma once

#include "formats/PatientInfo.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class EDFWriter;
class OxdWriter;

// The files of one recording: the filtered montage channels as EDF+/BDF+, optionally the raw
// device channels as BDF+, the lossless side file and the time-stamped log beside them.
class RecordingSession
{
public:
    struct Setup
    {
        QString stem; // path without extension
        float samplingRate = 0;
        QStringList montageNames;
        QStringList deviceChannelNames;
        QMap<QString, float> prefilters;
        bool rawBdf = false;
        bool oxd = true;
        QJsonObject sideHeader; // device, channels, rate, filters, start time
        qint64 startMs = 0;
        PatientInfo patient; // written into the header of the EDF/BDF files
    };

    RecordingSession();
    ~RecordingSession();

    // Creates the files; false with `error` set when one cannot be written.
    bool open(const Setup& setup, QString& error);
    // Closes every file and returns the paths written (the log only if it exists).
    QList<QString> close();

    // False once a file could not be written (see failure()); the files stay valid.
    bool write(const QList<QList<float>>& filtered, const QList<QList<float>>& deviceBlock, qint64 arrivalMs);
    // "writing <file> failed: <reason>" for the first file that failed; empty while all is well.
    QString failure() const { return m_failure; }
    void pause();
    void resume();
    int addAnnotation(const QString& text, int onsetMs, int durationMs);
    // One "ms<TAB>key<TAB>value" line in the log; false when it cannot be written.
    bool log(const QVariant& value, const QString& key, const QDateTime& time);
    bool addFile(const QString& name, const QByteArray& data);

    float durationSeconds() const;
    QString edfPath() const;
    QString stem() const { return m_stem; }

private:
    void checkWriters();

    QString m_stem;
    std::unique_ptr<EDFWriter> m_edf;
    std::unique_ptr<EDFWriter> m_raw;
    std::unique_ptr<OxdWriter> m_oxd;
    QString m_failure;
};
