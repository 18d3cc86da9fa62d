#pragma once

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QStringList>

// Process-wide console: time-stamped text items grouped by a type word, named status texts
// and named running averages. Every module reports here; the screens listen to the signals.
class GlobalConsole : public QObject
{
    Q_OBJECT
public:
    // When set, the console does nothing at all (no items, statuses or averages).
    static bool FullOptimization;
    // Items kept in memory per type; older ones are dropped so a long session stays bounded.
    static constexpr int MaxItemsPerType = 10000;

    static GlobalConsole* Instance();

    static void writeItem(const QString& text, const QString& type = QString(),
                          const QDateTime& time = QDateTime::currentDateTime());
    static void writeLine(QString text, QDateTime time = QDateTime::currentDateTime());

    static void setStatus(QString name, QString text);
    static QString getStatus(QString name);
    static QList<QString> getStatusNames();
    static void clearStatus(QString name);

    static double countAverage(QString name, double value, int maxCount);
    static double getAverage(QString name);
    static QList<QString> getAverageNames();

    static QString currentText();
    // The kept items of one type, newest first, and the types that have items.
    static QStringList getItems(const QString& type);
    static QStringList getTypes();
    static void disableType(QString type, bool disable);
    static void enableLogging(bool enable, QString path = QString());
    static bool isLoggingEnabled();
    // The file named by the last enableLogging (where logging starts when nothing was logged yet).
    static QString logFilePath();
    static void freeData();

Q_SIGNALS:
    void newEntry(QString text);
    void newStatusName(QString name);
    void updatedStatus(QString name, QString text);
    void statusCleared(QString name);
    void newAverageName(QString name);
    void updatedAverage(QString name, double value);
    // The same item as newEntry with its type apart, for views that group or filter by type.
    void itemWritten(QString type, QString line);
    void loggingChanged();

private:
    struct Average
    {
        qint32 count = 0;
        double average = 0.0;
        qint32 limit = 1;
    };

    explicit GlobalConsole(QObject* parent);

    void _writeItem(const QString& text, const QString& type, const QDateTime& time);
    void _setStatus(const QString& name, const QString& text);
    QString _getStatus(const QString& name) const;
    QList<QString> _getStatusNames() const;
    void _clearStatus(const QString& name);
    double _countAverage(const QString& name, double value, int maxCount);
    double _getAverage(const QString& name) const;
    QList<QString> _getAverageNames() const;
    QString _currentText() const;
    void _disableType(const QString& type, bool disable);
    void _enableLogging(bool enable, const QString& path);
    void _freeData();

    static GlobalConsole* m_pInstance;

    QHash<QString, QStringList> m_texts;
    QMap<QString, QString> m_statuses;
    QMap<QString, Average> m_averages;
    bool m_loggingEnabled = false;
    QString m_logFilePath;
    QStringList m_disabledTypes;
};
