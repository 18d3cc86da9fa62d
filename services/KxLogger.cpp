#include "services/KxLogger.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QMutex>
#include <QStandardPaths>

QMutex* KxLogger::st_pMutex = nullptr;
QString KxLogger::st_loggerPath;
FILE* KxLogger::pFile = nullptr;
QByteArray KxLogger::file_path;

KxLogger::KxLogger(QString path, QObject* parent)
    : QObject(parent)
    , m_path(path.isEmpty() ? standardLogFilePath() : path)
{
}

void KxLogger::log(QString filePath, QString line)
{
    LogToFile(line, filePath, false);
}

void KxLogger::Log(QString type, QString text, bool flush)
{
    LogTo(type, text, st_loggerPath, flush);
}

void KxLogger::Log(QString text, bool flush)
{
    LogTo(text, st_loggerPath, flush);
}

void KxLogger::LogTo(QString type, QString text, QString pathPrefix, bool flush)
{
    LogToFile(typedLine(type, text), dailyPath(pathPrefix), flush);
}

void KxLogger::LogTo(QString line, QString pathPrefix, bool flush)
{
    LogToFile(line, dailyPath(pathPrefix), flush);
}

void KxLogger::LogToFile(QString type, QString text, QString filePath, bool flush)
{
    LogToFile(typedLine(type, text), filePath, flush);
}

void KxLogger::LogToFile(QString line, QString filePath, bool /*flush*/)
{
    QMutex* mutex = st_pMutex;
    if (mutex)
        mutex->lock();
    if (file_path.isEmpty())
        file_path = filePath.toUtf8();
    pFile = std::fopen(file_path.constData(), "a");
    if (pFile) {
        const QByteArray bytes = (QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz"))
                                  + QLatin1Char('\t') + line + QStringLiteral("\r\n"))
                                     .toUtf8();
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), pFile);
        std::fclose(pFile);
        pFile = nullptr;
    }
    if (mutex)
        mutex->unlock();
}

void KxLogger::setLoggerPath(QString prefix)
{
    st_loggerPath = prefix;
}

QString KxLogger::standardLogFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QLatin1Char('/')
        + QCoreApplication::applicationName() + QLatin1Char('_')
        + QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd-hh.mm.ss")) + QStringLiteral(".")
        + QDateTime::currentDateTime().toString(QStringLiteral("zzz")) + QStringLiteral(".log");
}

QString KxLogger::typedLine(const QString& type, const QString& text)
{
    return type.isEmpty() ? text : type + QLatin1Char('\t') + text;
}

QString KxLogger::dailyPath(const QString& prefix)
{
    return prefix + QDate::currentDate().toString(QStringLiteral("yyyy.MM.dd")) + QStringLiteral(".log");
}

QString KxLogger::currentFilePath()
{
    QMutex* mutex = st_pMutex;
    if (mutex)
        mutex->lock();
    const QString path = QString::fromUtf8(file_path);
    if (mutex)
        mutex->unlock();
    return path;
}
