#pragma once

#include "core/RecordingSession.h"

#include <QObject>
#include <QTimer>

// Free space for a recording: a start is refused when less than a minute of it fits, and while
// it runs a warning comes when less than ten minutes fit, before the disk is actually full.
class RecordingSpaceWatch : public QObject
{
    Q_OBJECT
public:
    static constexpr int RefuseBelowSeconds = 60;
    static constexpr int WarnBelowSeconds = 600;

    explicit RecordingSpaceWatch(QObject* parent = nullptr);

    // Bytes one second of such a recording takes, all its files together.
    static qint64 bytesPerSecond(const RecordingSession::Setup& setup);
    // Why a recording cannot start in `folder`; empty when a minute of it fits.
    static QString refusal(const QString& folder, qint64 bytesPerSecond);

    void start(const QString& folder, qint64 bytesPerSecond);
    void stop();

Q_SIGNALS:
    // Less than ten minutes of the recording fit; once a minute at most.
    void spaceLow(QString message);

private:
    void check();
    static qint64 availableBytes(const QString& folder);
    static QString megabytes(qint64 bytes);

    static constexpr int CheckIntervalMs = 5000;
    static constexpr qint64 WarnAgainAfterMs = 60000;

    QTimer m_timer;
    QString m_folder;
    qint64 m_bytesPerSecond = 0;
    qint64 m_lastWarningMs = 0;
};
