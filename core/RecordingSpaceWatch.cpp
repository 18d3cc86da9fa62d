#include "core/RecordingSpaceWatch.h"

#include "formats/EdfFileWriter.h"
#include "services/GlobalConsole.h"

#include <QDateTime>
#include <QFileInfo>
#include <QStorageInfo>

RecordingSpaceWatch::RecordingSpaceWatch(QObject* parent)
    : QObject(parent)
{
    m_timer.setInterval(CheckIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &RecordingSpaceWatch::check);
}

qint64 RecordingSpaceWatch::bytesPerSecond(const RecordingSession::Setup& setup)
{
    const qint64 rate = qint64(setup.samplingRate + 0.5f);
    qint64 bytes = rate * setup.montageNames.size() * 2 + EdfFileWriter::AnnotationBytesEdf;
    if (setup.rawBdf)
        bytes += rate * setup.deviceChannelNames.size() * 3 + EdfFileWriter::AnnotationBytesBdf;
    if (setup.oxd)
        bytes += rate * setup.deviceChannelNames.size() * 4 + 64; // samples as floats, chunk framing
    return bytes;
}

QString RecordingSpaceWatch::refusal(const QString& folder, qint64 bytesPerSecond)
{
    const qint64 available = availableBytes(folder);
    if (available < 0 || available >= RefuseBelowSeconds * bytesPerSecond)
        return {};
    return QStringLiteral("not enough free space in %1: %2 free, one minute of this recording needs %3")
        .arg(folder, megabytes(available), megabytes(RefuseBelowSeconds * bytesPerSecond));
}

void RecordingSpaceWatch::start(const QString& folder, qint64 bytesPerSecond)
{
    m_folder = folder;
    m_bytesPerSecond = bytesPerSecond;
    m_lastWarningMs = 0;
    check();
    m_timer.start();
}

void RecordingSpaceWatch::stop()
{
    m_timer.stop();
}

void RecordingSpaceWatch::check()
{
    const qint64 available = availableBytes(m_folder);
    if (available < 0 || available >= WarnBelowSeconds * m_bytesPerSecond)
        return;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (m_lastWarningMs && now - m_lastWarningMs < WarnAgainAfterMs)
        return;
    m_lastWarningMs = now;
    const QString message = QStringLiteral("Low disk space for the recording: %1 free in %2, about %3 min left")
                                .arg(megabytes(available), m_folder)
                                .arg(available / m_bytesPerSecond / 60);
    GlobalConsole::writeLine(QStringLiteral("WARNING ") + message);
    Q_EMIT spaceLow(message);
}

// The file system the folder will be made on (its nearest existing ancestor); -1 when it
// cannot be asked.
qint64 RecordingSpaceWatch::availableBytes(const QString& folder)
{
    QString existing = QFileInfo(folder).absoluteFilePath();
    while (!QFileInfo::exists(existing) && QFileInfo(existing).path() != existing)
        existing = QFileInfo(existing).path();
    QStorageInfo storage(existing);
    return storage.isValid() && storage.isReady() ? storage.bytesAvailable() : -1;
}

QString RecordingSpaceWatch::megabytes(qint64 bytes)
{
    return QStringLiteral("%1 MB").arg(double(bytes) / 1e6, 0, 'f', 1);
}
