#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <cstdio>

class QMutex;

// Plain-text file logger. Lines are "hh:mm:ss.zzz", TAB, the line, CRLF; the file is opened
// and closed for every line so that nothing is lost when the process dies.
class KxLogger : public QObject
{
    Q_OBJECT
public:
    explicit KxLogger(QString path = QString(), QObject* parent = nullptr);

    QString path() const { return m_path; }

    static void Log(QString type, QString text, bool flush = true);
    static void Log(QString text, bool flush = true);
    static void LogTo(QString type, QString text, QString pathPrefix, bool flush = true);
    static void LogTo(QString line, QString pathPrefix, bool flush = true);
    static void LogToFile(QString type, QString text, QString filePath, bool flush = true);
    static void LogToFile(QString line, QString filePath, bool flush = true);

    static void setLoggerPath(QString prefix);
    static QString standardLogFilePath();
    // The file every line goes to once one was written (see file_path); empty before.
    static QString currentFilePath();

    // Serialises writers when set; without it lines are written unlocked.
    static QMutex* st_pMutex;

public Q_SLOTS:
    void log(QString filePath, QString line);

private:
    static QString typedLine(const QString& type, const QString& text);
    static QString dailyPath(const QString& prefix);

    QString m_path;

    static QString st_loggerPath;
    static FILE* pFile;
    // The first target is kept for the life of the process: a daily file started before
    // midnight keeps receiving lines after it.
    static QByteArray file_path;
};
