#include "core/RecordingSession.h"

#include "formats/EDFWriter.h"
#include "formats/OxdWriter.h"
#include "services/GlobalConsole.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

RecordingSession::RecordingSession() = default;

RecordingSession::~RecordingSession()
{
    close();
}

bool RecordingSession::open(const Setup& setup, QString& error)
{
    m_stem = setup.stem;
    const QString folder = QFileInfo(m_stem).absolutePath();
    if (!QDir().mkpath(folder)) {
        error = QStringLiteral("cannot create the folder %1").arg(folder);
        return false;
    }
    const int rate = int(setup.samplingRate);
    m_edf = std::make_unique<EDFWriter>(m_stem + QStringLiteral(".edf"), setup.montageNames, rate, setup.prefilters,
                                        QList<double>());
    if (!m_edf->isFileOpen()) {
        error = QStringLiteral("cannot write %1.edf").arg(m_stem);
        m_edf.reset();
        return false;
    }
    PatientInfo patient = setup.patient;
    m_edf->setPatientInfo(patient);
    m_edf->takeStartTime(setup.startMs);
    if (setup.rawBdf) {
        m_raw = std::make_unique<EDFWriter>(m_stem + QStringLiteral(".raw.bdf"), setup.deviceChannelNames, rate,
                                            QMap<QString, float>(), QList<double>());
        m_raw->setPatientInfo(patient);
        m_raw->takeStartTime(setup.startMs);
    }
    if (setup.oxd) {
        m_oxd = std::make_unique<OxdWriter>();
        if (!m_oxd->open(m_stem + QStringLiteral(".oxd"), setup.sideHeader)) {
            error = QStringLiteral("cannot write %1.oxd: %2").arg(m_stem, m_oxd->errorString());
            close();
            return false;
        }
    }
    return true;
}

QList<QString> RecordingSession::close()
{
    QList<QString> paths;
    if (m_edf) {
        m_edf->clearShift();
        m_edf->close();
        paths.append(m_edf->path());
        m_edf.reset();
    }
    if (m_raw) {
        m_raw->clearShift();
        m_raw->close();
        paths.append(m_raw->path());
        m_raw.reset();
    }
    if (m_oxd) {
        m_oxd->close();
        paths.append(m_oxd->path());
        m_oxd.reset();
    }
    const QString logPath = m_stem + QStringLiteral(".log");
    if (!m_stem.isEmpty() && QFile::exists(logPath))
        paths.append(logPath);
    return paths;
}

bool RecordingSession::write(const QList<QList<float>>& filtered, const QList<QList<float>>& deviceBlock,
                             qint64 arrivalMs)
{
    if (m_edf)
        m_edf->writeData(filtered);
    if (m_raw)
        m_raw->writeData(deviceBlock);
    if (m_oxd)
        m_oxd->writeBlock(arrivalMs, deviceBlock);
    checkWriters();
    return m_failure.isEmpty();
}

void RecordingSession::checkWriters()
{
    if (!m_failure.isEmpty())
        return;
    for (const EDFWriter* writer : { m_edf.get(), m_raw.get() }) {
        if (writer && writer->hasFailed()) {
            m_failure = QStringLiteral("writing %1 failed: %2").arg(writer->path(), writer->errorString());
            return;
        }
    }
    if (m_oxd && m_oxd->hasFailed())
        m_failure = QStringLiteral("writing %1 failed: %2").arg(m_oxd->path(), m_oxd->errorString());
}

void RecordingSession::pause()
{
    if (m_edf)
        m_edf->pauseRecord();
    if (m_raw)
        m_raw->pauseRecord();
}

void RecordingSession::resume()
{
    if (m_edf)
        m_edf->continueRecord();
    if (m_raw)
        m_raw->continueRecord();
}

int RecordingSession::addAnnotation(const QString& text, int onsetMs, int durationMs)
{
    if (!m_edf)
        return -1;
    const int onset = m_edf->addAnnotation(text, onsetMs, durationMs);
    if (m_raw)
        m_raw->addAnnotation(text, onset, durationMs);
    if (m_oxd)
        m_oxd->addAnnotation(onset, QDateTime::currentMSecsSinceEpoch(), text);
    return onset;
}

bool RecordingSession::log(const QVariant& value, const QString& key, const QDateTime& time)
{
    QFile file(m_stem + QStringLiteral(".log"));
    if (m_stem.isEmpty())
        return false;
    if (!file.open(QIODevice::Append | QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        if (m_failure.isEmpty())
            m_failure = QStringLiteral("writing %1 failed: %2").arg(file.fileName(), file.errorString());
        return false;
    }
    const qint64 before = file.size();
    const QString line = QString::number(time.toMSecsSinceEpoch()) + QLatin1Char('\t') + key + QLatin1Char('\t')
        + value.toString();
    const QByteArray bytes = (line + QStringLiteral("\r\n")).toUtf8();
    GlobalConsole::writeLine(line);
    if (file.write(bytes) == bytes.size() && file.flush())
        return true;
    file.resize(before); // only whole lines stay in the log
    if (m_failure.isEmpty())
        m_failure = QStringLiteral("writing %1 failed: %2").arg(file.fileName(), file.errorString());
    return false;
}

bool RecordingSession::addFile(const QString& name, const QByteArray& data)
{
    // Only a plain file name: an attachment always lands beside the recording.
    const QString fileName = QFileInfo(name).fileName();
    if (m_stem.isEmpty() || fileName.isEmpty())
        return false;
    QFile file(QFileInfo(m_stem).absoluteDir().filePath(fileName));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(data) == data.size();
}

float RecordingSession::durationSeconds() const
{
    return m_edf ? m_edf->getDurationSeconds() : 0.0f;
}

QString RecordingSession::edfPath() const
{
    return m_edf ? m_edf->path() : QString();
}
