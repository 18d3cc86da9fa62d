#include "app/ui/RecordingController.h"

#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

#include <QDate>
#include <QDesktopServices>
#include <QDir>
#include <QUrl>

RecordingController::RecordingController(CortexCore* engine, OrvexSettings* settings, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_settings(settings)
{
    // The engine reports every change, whether the window, the API or a fault caused it.
    connect(engine, &CortexCore::recordStarted, this, [this](const QString& path) {
        m_annotations.clear();
        m_currentFile = path;
        m_duration = 0;
        m_lastError.clear();
        Q_EMIT durationChanged();
        Q_EMIT stateChanged();
    });
    connect(engine, &CortexCore::recordStopped, this, [this](const QList<QString>& paths, float seconds) {
        m_lastFiles = paths;
        m_currentFile.clear();
        m_duration = seconds;
        Q_EMIT durationChanged();
        Q_EMIT stateChanged();
    });
    connect(engine, &CortexCore::recordFailed, this, [this](const QString& error) {
        setError(QStringLiteral("The recording stopped: ") + error);
    });
    connect(engine, &CortexCore::recordDurationChanged, this, [this](float seconds) {
        m_duration = seconds;
        Q_EMIT durationChanged();
    });
    connect(engine, &CortexCore::newAnnotation, this, [this](const QString& text, int onsetMs) {
        if (onsetMs >= 0)
            m_annotations.append(text, onsetMs);
    });
    for (auto signal : { &CortexCore::recordPaused, &CortexCore::recordContinued, &CortexCore::deviceStopped })
        connect(engine, signal, this, &RecordingController::stateChanged);
    // The engine marks itself started only after announcing it: read its state a turn later.
    connect(engine, &CortexCore::deviceStarted, this, &RecordingController::stateChanged, Qt::QueuedConnection);
    connect(engine, &CortexCore::isRecordingChanged, this, &RecordingController::stateChanged);
    connect(settings, &OrvexSettings::DataFolderChanged, this, &RecordingController::folderChanged);
}

bool RecordingController::canRecord() const
{
    return m_engine->isDeviceStarted();
}

bool RecordingController::isRecording() const
{
    return m_engine->isRecording();
}

bool RecordingController::isPaused() const
{
    return m_engine->isRecording() && m_engine->isRecordPaused();
}

QString RecordingController::folder() const
{
    return QDir::toNativeSeparators(m_settings->resolvedDataFolder());
}

QStringList RecordingController::keyAnnotations()
{
    return { QStringLiteral("Eyes closed"), QStringLiteral("Eyes open"),  QStringLiteral("Task start"),
             QStringLiteral("Task end"),    QStringLiteral("Artifact"),   QStringLiteral("Movement"),
             QStringLiteral("Blink"),       QStringLiteral("Stimulus"),   QStringLiteral("Marker") };
}

QString RecordingController::formatDuration(double seconds)
{
    const qint64 total = qint64(std::max(0.0, seconds));
    return QStringLiteral("%1:%2:%3")
        .arg(total / 3600, 2, 10, QLatin1Char('0'))
        .arg(total / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(total % 60, 2, 10, QLatin1Char('0'));
}

bool RecordingController::start()
{
    if (m_engine->isRecording())
        return false;
    if (!m_engine->startRecord()) {
        setError(m_engine->lastRecordError().isEmpty() ? QStringLiteral("No device streams: start one first")
                                                        : m_engine->lastRecordError());
        return false;
    }
    return true;
}

bool RecordingController::pause()
{
    return m_engine->pauseRecord();
}

bool RecordingController::resume()
{
    return m_engine->continueRecord();
}

void RecordingController::stop()
{
    if (m_engine->isRecording())
        m_engine->stopRecord();
}

bool RecordingController::annotate(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || !m_engine->isRecording())
        return false;
    return m_engine->addAnnotation(trimmed) >= 0;
}

bool RecordingController::annotateKey(int key)
{
    const QStringList texts = keyAnnotations();
    return key >= 1 && key <= texts.size() && annotate(texts.at(key - 1));
}

bool RecordingController::openFolder()
{
    const QString path = m_settings->resolvedDataFolder();
    QDir().mkpath(path);
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return true;
    GlobalConsole::writeLine(QStringLiteral("No file manager opened ") + path);
    return false;
}

void RecordingController::setError(const QString& error)
{
    m_lastError = error;
    GlobalConsole::writeLine(QStringLiteral("Recording: ") + error);
    Q_EMIT stateChanged();
}

template <typename Change>
void RecordingController::changePatient(Change change)
{
    PatientInfo patient = m_engine->patientInfo();
    change(patient);
    m_engine->setPatientInfo(patient);
    Q_EMIT patientChanged();
}

void RecordingController::setPatientName(const QString& name)
{
    changePatient([&](PatientInfo& p) { p.patientName = name.trimmed(); });
}

void RecordingController::setPatientCode(const QString& code)
{
    changePatient([&](PatientInfo& p) { p.patientCode = code.trimmed(); });
}

void RecordingController::setPatientGender(int gender)
{
    changePatient([&](PatientInfo& p) { p.gender = gender == 1 || gender == 2 ? gender : 0; });
}

void RecordingController::setEquipment(const QString& equipment)
{
    changePatient([&](PatientInfo& p) { p.equipment = equipment.trimmed(); });
}

void RecordingController::setPatientAdditional(const QString& additional)
{
    changePatient([&](PatientInfo& p) { p.patientAdditional = additional.trimmed(); });
}

QString RecordingController::birthDate() const
{
    const PatientInfo p = m_engine->patientInfo();
    const QDate date(p.birthYear, p.birthMonth, p.birthDay);
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

bool RecordingController::setBirthDate(const QString& text)
{
    const QString trimmed = text.trimmed();
    const QDate date = QDate::fromString(trimmed, Qt::ISODate);
    if (!trimmed.isEmpty() && (!date.isValid() || date > QDate::currentDate() || date.year() < 1900)) {
        m_patientError = QStringLiteral("Birth date: a past date as YYYY-MM-DD, or empty");
        GlobalConsole::writeLine(QStringLiteral("Recording: birth date refused: ") + trimmed);
        Q_EMIT patientChanged();
        return false;
    }
    m_patientError.clear();
    changePatient([&](PatientInfo& p) {
        p.birthYear = date.isValid() ? date.year() : 0;
        p.birthMonth = date.isValid() ? date.month() : 0;
        p.birthDay = date.isValid() ? date.day() : 0;
    });
    return true;
}
