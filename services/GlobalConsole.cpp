#include "services/GlobalConsole.h"

#include "services/KxLogger.h"

#include <QDebug>

bool GlobalConsole::FullOptimization = false;
GlobalConsole* GlobalConsole::m_pInstance = nullptr;

GlobalConsole::GlobalConsole(QObject* parent)
    : QObject(parent)
{
}

GlobalConsole* GlobalConsole::Instance()
{
    if (!m_pInstance)
        m_pInstance = new GlobalConsole(nullptr);
    return m_pInstance;
}

void GlobalConsole::writeItem(const QString& text, const QString& type, const QDateTime& time)
{
    Instance()->_writeItem(text, type, time);
}

void GlobalConsole::writeLine(QString text, QDateTime time)
{
    Instance()->_writeItem(text, QString(), time);
}

void GlobalConsole::setStatus(QString name, QString text) { Instance()->_setStatus(name, text); }
QString GlobalConsole::getStatus(QString name) { return Instance()->_getStatus(name); }
QList<QString> GlobalConsole::getStatusNames() { return Instance()->_getStatusNames(); }
void GlobalConsole::clearStatus(QString name) { Instance()->_clearStatus(name); }

double GlobalConsole::countAverage(QString name, double value, int maxCount)
{
    return Instance()->_countAverage(name, value, maxCount);
}

double GlobalConsole::getAverage(QString name) { return Instance()->_getAverage(name); }
QList<QString> GlobalConsole::getAverageNames() { return Instance()->_getAverageNames(); }
QString GlobalConsole::currentText() { return Instance()->_currentText(); }
void GlobalConsole::disableType(QString type, bool disable) { Instance()->_disableType(type, disable); }
void GlobalConsole::enableLogging(bool enable, QString path) { Instance()->_enableLogging(enable, path); }
bool GlobalConsole::isLoggingEnabled() { return Instance()->m_loggingEnabled; }
QString GlobalConsole::logFilePath() { return Instance()->m_logFilePath; }
QStringList GlobalConsole::getItems(const QString& type) { return Instance()->m_texts.value(type); }
QStringList GlobalConsole::getTypes() { return Instance()->m_texts.keys(); }
void GlobalConsole::freeData() { Instance()->_freeData(); }

void GlobalConsole::_writeItem(const QString& text, const QString& type, const QDateTime& time)
{
    if (FullOptimization)
        return;
    if (!type.isEmpty() && m_disabledTypes.contains(type))
        return;

    QString line = type.isEmpty() ? text : type + QLatin1Char(' ') + text;
    line = time.toString(QStringLiteral("hh:mm:ss.zzz")) + QLatin1Char(' ') + line;

    QStringList& items = m_texts[type];
    items.prepend(line + QStringLiteral("\r\n"));
    if (items.size() > MaxItemsPerType)
        items.removeLast();

    // The log line carries the logger's own stamp and the console's: both are wanted.
    if (m_loggingEnabled)
        KxLogger::LogToFile(type, line, m_logFilePath, true);

    Q_EMIT newEntry(line);
    Q_EMIT itemWritten(type, line);
    qDebug().noquote() << line;
}

void GlobalConsole::_setStatus(const QString& name, const QString& text)
{
    if (FullOptimization)
        return;
    const bool isNew = !m_statuses.contains(name);
    m_statuses.insert(name, text);
    Q_EMIT updatedStatus(name, text);
    if (isNew)
        Q_EMIT newStatusName(name);
}

QString GlobalConsole::_getStatus(const QString& name) const { return m_statuses.value(name); }
QList<QString> GlobalConsole::_getStatusNames() const { return m_statuses.keys(); }

void GlobalConsole::_clearStatus(const QString& name)
{
    if (FullOptimization)
        return;
    if (name.isEmpty())
        m_statuses.clear();
    else
        m_statuses.remove(name);
    Q_EMIT statusCleared(name);
}

double GlobalConsole::_countAverage(const QString& name, double value, int maxCount)
{
    if (FullOptimization)
        return 0.0;
    const bool isNew = !m_averages.contains(name);
    Average entry = m_averages.value(name);
    entry.limit = qMax(maxCount, 1);
    if (entry.count < 1) {
        entry.average = value;
        entry.count = 1;
    } else {
        // count - 1 old parts to one new part: the second sample replaces the first.
        entry.average = ((entry.count - 1) * entry.average + value) / entry.count;
        entry.count = qMin(entry.count + 1, entry.limit);
    }
    m_averages.insert(name, entry);
    Q_EMIT updatedAverage(name, entry.average);
    if (isNew)
        Q_EMIT newAverageName(name);
    return entry.average;
}

double GlobalConsole::_getAverage(const QString& name) const { return m_averages.value(name).average; }
QList<QString> GlobalConsole::_getAverageNames() const { return m_averages.keys(); }

QString GlobalConsole::_currentText() const
{
    QString text;
    for (auto it = m_texts.cbegin(); it != m_texts.cend(); ++it)
        text += it.value().join(QLatin1Char('\n'));
    return text;
}

void GlobalConsole::_disableType(const QString& type, bool disable)
{
    if (disable) {
        if (!m_disabledTypes.contains(type))
            m_disabledTypes.append(type);
    } else {
        m_disabledTypes.removeAll(type);
    }
}

void GlobalConsole::_enableLogging(bool enable, const QString& path)
{
    m_loggingEnabled = enable;
    m_logFilePath = path.isEmpty() ? KxLogger::standardLogFilePath() : path;
    Q_EMIT loggingChanged();
}

void GlobalConsole::_freeData()
{
    m_texts.clear();
}
