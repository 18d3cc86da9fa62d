#include "services/KxLogger.h"

#include <QMutex>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

// The logger keeps its first target for the life of the process, so the order of these
// cases matters: the first write fixes the file.
class TestKxLogger : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    QStringList linesOf(const QString& path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
        lines.removeLast(); // after the last CRLF
        return lines;
    }

private Q_SLOTS:
    void firstTargetIsKeptForEveryLine()
    {
        const QString first = m_folder.filePath(QStringLiteral("first.log"));
        const QString second = m_folder.filePath(QStringLiteral("second.log"));
        KxLogger::LogToFile(QStringLiteral("TYPE"), QStringLiteral("one"), first, true);
        KxLogger::LogToFile(QStringLiteral("two"), second, false);
        KxLogger::setLoggerPath(m_folder.filePath(QStringLiteral("daily-")));
        KxLogger::Log(QStringLiteral("three"));
        KxLogger::LogTo(QString(), QStringLiteral("four"), m_folder.filePath(QStringLiteral("other-")), true);
        KxLogger logger;
        logger.log(second, QStringLiteral("five"));

        QVERIFY(!QFile::exists(second));
        QVERIFY(QDir(m_folder.path()).entryList({ QStringLiteral("daily-*") }).isEmpty());
        const QStringList lines = linesOf(first);
        QCOMPARE(lines.size(), 5);
        const QRegularExpression stamp(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\t"));
        for (const QString& line : lines)
            QVERIFY2(stamp.match(line).hasMatch(), qPrintable(line));
        QCOMPARE(lines[0].section(QLatin1Char('\t'), 1), QStringLiteral("TYPE\tone"));
        QCOMPARE(lines[1].section(QLatin1Char('\t'), 1), QStringLiteral("two"));
        QCOMPARE(lines[2].section(QLatin1Char('\t'), 1), QStringLiteral("three"));
        QCOMPARE(lines[3].section(QLatin1Char('\t'), 1), QStringLiteral("four"));
        QCOMPARE(lines[4].section(QLatin1Char('\t'), 1), QStringLiteral("five"));
    }

    void lockedWritersKeepLinesWhole()
    {
        QMutex mutex;
        KxLogger::st_pMutex = &mutex;
        const QString path = m_folder.filePath(QStringLiteral("first.log"));
        const qsizetype before = linesOf(path).size();
        QList<QThread*> threads;
        for (int t = 0; t < 4; ++t) {
            threads.append(QThread::create([t] {
                for (int i = 0; i < 200; ++i)
                    KxLogger::LogToFile(QStringLiteral("T%1"), QStringLiteral("line %1 of writer %2").arg(i).arg(t),
                                        QString(), true);
            }));
            threads.last()->start();
        }
        for (QThread* thread : threads) {
            thread->wait();
            delete thread;
        }
        KxLogger::st_pMutex = nullptr;
        const QStringList lines = linesOf(path);
        QCOMPARE(lines.size() - before, 800);
        for (qsizetype i = before; i < lines.size(); ++i)
            QVERIFY2(lines[i].contains(QStringLiteral(" of writer ")), qPrintable(lines[i]));
    }

    void standardPathIsTimeStamped()
    {
        QCoreApplication::setApplicationName(QStringLiteral("OrvexPro"));
        const QString path = KxLogger::standardLogFilePath();
        const QRegularExpression form(QStringLiteral("/OrvexPro_\\d{4}\\.\\d\\d\\.\\d\\d-\\d\\d\\.\\d\\d\\.\\d\\d\\.\\d{3}\\.log$"));
        QVERIFY2(form.match(path).hasMatch(), qPrintable(path));
        QVERIFY(path.startsWith(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)));
        QCOMPARE(KxLogger(QString()).path().left(path.size() - 8), path.left(path.size() - 8));
    }
};

QTEST_GUILESS_MAIN(TestKxLogger)
#include "tst_kxlogger.moc"
