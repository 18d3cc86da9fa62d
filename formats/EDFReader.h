#pragma once

#include "dsp/Montage.h"
#include "formats/EdfFileReader.h"
#include "formats/PatientInfo.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSharedPointer>
#include <QString>

// One annotation as handed out by EDFReader; texts NUL-terminated (cut when longer).
struct edf_annotation_struct
{
    qint64 onset = 0;          // 100 ns ticks from the file start (its sub-second part included)
    char duration[16] = {};    // seconds as text, empty when the file gives none
    char annotation[513] = {}; // UTF-8
};

// Plain summary of a file, see EDFReader::fileInfo().
struct EDFInfo
{
    bool valid = false;
    bool bdf = false;
    QString path;
    QDateTime startDate;
    int channelCount = 0;
    float samplingRate = 0.0f;
    double durationSeconds = 0.0; // whole seconds
    unsigned lengthSamples = 0;
    QList<QString> channelNames;
    int annotationCount = 0;
};

// Reads an EDF/EDF+/BDF/BDF+ file: header facts, annotations, and samples in microvolts.
// The recorder stores every sample negated, so every sample read is negated again here.
// Channels are the ordinary signals in file order; annotation signals are not channels.
class EDFReader : public QObject
{
    Q_OBJECT
public:
    EDFReader();
    explicit EDFReader(const QString& path, QObject* parent = nullptr);
    ~EDFReader() override;

    void setPath(const QString& path) { m_path = path; }
    QString getPath() const { return m_path; }

    // False (with the codec's reason on the console) when the file is refused.
    bool open();
    bool isFileOpened() const { return m_opened; }
    bool close();

    QDateTime startDate() const { return m_startDate; }
    float samplingRate() const { return m_samplingRate; }
    double getSeconds() const { return m_seconds; }
    unsigned lengthSamples() const { return m_lengthSamples; }
    QString dimension() const { return m_dimension; }
    QMap<QString, float> getFilters() const { return m_filters; }
    int getChannelCount() const { return static_cast<int>(m_channels.size()); }
    QString getChannelName(int channel) const;
    QList<QString> getChannelNames() const;
    QSharedPointer<Montage> getFileMontage() const { return m_montage; }
    // Gender: 1 male, 2 female, 0 unknown. False when no file is open.
    bool getPatientInfo(PatientInfo& info) const;
    bool isBdf() const { return m_reader.isBdf(); }

    // Samples `from`..`from + count` of every channel into out[k * count ...]. Returns the
    // samples read per channel, 0 without channels, -2 when not opened, -1 on a failed read.
    int getBuffData(unsigned from, unsigned count, double* out);
    int getChannelBuffData(unsigned channel, unsigned from, unsigned count, double* out);
    QList<double> getChannelData(unsigned channel, unsigned from, unsigned count);
    QList<float> getChannelDataFloat(unsigned channel, unsigned from, unsigned count);

    // Onset in ms -> text; of equal milliseconds the later annotation wins.
    QMap<qint64, QString> getAnnotations() const;
    void getAnnotationList(QList<edf_annotation_struct>& list) const { list = m_annotations; }

    QString infoShort() const;
    QString infoFull() const;
    // "hh:mm:ss", with "." and milliseconds when `withMs`.
    static QString timeToText(double seconds, bool withMs);
    static EDFInfo fileInfo(const QString& path);

    // Parses prefilter texts such as "HP:0.5Hz LP:30.0Hz "; keys are the first two characters.
    static QMap<QString, float> parsePrefilter(const QString& text);

protected:
    QString getPatientName() const { return m_patientName; }
    QString getPatientGender() const { return m_patientGender; }
    QString getPatientData() const { return m_patientData; }
    QString getEquipmentInfo() const { return m_equipment; }

private:
    void readHeaderFacts();
    void readAnnotations();
    void resetFacts();
    qsizetype availableCount(unsigned channel, unsigned from, unsigned count) const;

    EdfFileReader m_reader;
    QString m_path;
    bool m_opened = false;
    QDateTime m_startDate;
    QList<int> m_channels; // codec signal index of each channel
    float m_samplingRate = 0.0f;
    double m_seconds = 0.0;
    unsigned m_lengthSamples = 0;
    QString m_dimension;
    QMap<QString, float> m_filters;
    QString m_patientName;
    QString m_patientData;
    QString m_patientGender;
    QString m_equipment;
    QSharedPointer<Montage> m_montage;
    QList<edf_annotation_struct> m_annotations;
};
