#pragma once

#include "app/ui/AnnotationListModel.h"
#include "core/CortexCore.h"

#include <QObject>
#include <QStringList>

class OrvexSettings;

// The recording controls: start, pause, continue, stop, the elapsed recording time, the
// annotations typed or given by the keys 1-9, and where the files go.
class RecordingController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canRecord READ canRecord NOTIFY stateChanged)
    Q_PROPERTY(bool recording READ isRecording NOTIFY stateChanged)
    Q_PROPERTY(bool paused READ isPaused NOTIFY stateChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(QString durationText READ durationText NOTIFY durationChanged)
    Q_PROPERTY(QString folder READ folder NOTIFY folderChanged)
    Q_PROPERTY(QString currentFile READ currentFile NOTIFY stateChanged)
    Q_PROPERTY(QStringList lastFiles READ lastFiles NOTIFY stateChanged)
    Q_PROPERTY(QString lastError READ lastError NOTIFY stateChanged)
    Q_PROPERTY(QStringList keyAnnotations READ keyAnnotations CONSTANT)
    Q_PROPERTY(AnnotationListModel* annotations READ annotations CONSTANT)
    // Who the next recording is of, written into its file header.
    Q_PROPERTY(QString patientName READ patientName WRITE setPatientName NOTIFY patientChanged)
    Q_PROPERTY(QString patientCode READ patientCode WRITE setPatientCode NOTIFY patientChanged)
    // 0 unknown, 1 male, 2 female.
    Q_PROPERTY(int patientGender READ patientGender WRITE setPatientGender NOTIFY patientChanged)
    // "yyyy-MM-dd" or empty; see setBirthDate.
    Q_PROPERTY(QString birthDate READ birthDate NOTIFY patientChanged)
    Q_PROPERTY(QString equipment READ equipment WRITE setEquipment NOTIFY patientChanged)
    Q_PROPERTY(QString patientAdditional READ patientAdditional WRITE setPatientAdditional NOTIFY patientChanged)
    Q_PROPERTY(QString patientError READ patientError NOTIFY patientChanged)
public:
    RecordingController(CortexCore* engine, OrvexSettings* settings, QObject* parent = nullptr);

    bool canRecord() const;
    bool isRecording() const;
    bool isPaused() const;
    double duration() const { return m_duration; }
    QString durationText() const { return formatDuration(m_duration); }
    QString folder() const;
    QString currentFile() const { return m_currentFile; }
    QStringList lastFiles() const { return m_lastFiles; }
    QString lastError() const { return m_lastError; }
    // The texts the keys 1-9 add, in key order.
    static QStringList keyAnnotations();
    AnnotationListModel* annotations() { return &m_annotations; }

    // "hh:mm:ss" of a recording time.
    Q_INVOKABLE static QString formatDuration(double seconds);

    Q_INVOKABLE bool start();
    Q_INVOKABLE bool pause();
    Q_INVOKABLE bool resume();
    Q_INVOKABLE void stop();
    // Adds an annotation at the current recording time; false when not recording or empty.
    Q_INVOKABLE bool annotate(const QString& text);
    // The annotation of key 1-9.
    Q_INVOKABLE bool annotateKey(int key);
    Q_INVOKABLE bool openFolder();

    QString patientName() const { return m_engine->patientInfo().patientName; }
    QString patientCode() const { return m_engine->patientInfo().patientCode; }
    int patientGender() const { return m_engine->patientInfo().gender; }
    QString birthDate() const;
    QString equipment() const { return m_engine->patientInfo().equipment; }
    QString patientAdditional() const { return m_engine->patientInfo().patientAdditional; }
    QString patientError() const { return m_patientError; }
    void setPatientName(const QString& name);
    void setPatientCode(const QString& code);
    void setPatientGender(int gender);
    void setEquipment(const QString& equipment);
    void setPatientAdditional(const QString& additional);
    // "yyyy-MM-dd" in the past, or empty for unknown; anything else is refused with patientError.
    Q_INVOKABLE bool setBirthDate(const QString& text);

Q_SIGNALS:
    void stateChanged();
    void durationChanged();
    void folderChanged();
    void patientChanged();

private:
    void setError(const QString& error);
    // Applies `change` to the engine's patient record and reports it.
    template <typename Change>
    void changePatient(Change change);

    CortexCore* m_engine;
    OrvexSettings* m_settings;
    AnnotationListModel m_annotations;
    double m_duration = 0;
    QString m_currentFile;
    QStringList m_lastFiles;
    QString m_lastError;
    QString m_patientError;
};
