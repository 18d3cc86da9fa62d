#include "services/GlobalConsole.h"
#include "services/GlobalConsoleWriter.h"

#include <QTemporaryDir>
#include <QtTest>

class TestGlobalConsole : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    static QDateTime at(int h, int m, int s, int ms)
    {
        return QDateTime(QDate(2026, 11, 21), QTime(h, m, s, ms));
    }

private Q_SLOTS:
    void init()
    {
        GlobalConsole::FullOptimization = false;
        GlobalConsole::freeData();
    }

    void itemsAreStampedTypedAndNewestFirst()
    {
        QSignalSpy entries(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        GlobalConsole::writeItem(QStringLiteral("ok"), QStringLiteral("BLE"), at(12, 0, 1, 2));
        QCOMPARE(entries.count(), 1);
        QCOMPARE(entries.first().first().toString(), QStringLiteral("12:00:01.002 BLE ok"));
        QCOMPARE(GlobalConsole::currentText(), QStringLiteral("12:00:01.002 BLE ok\r\n"));

        GlobalConsole::freeData();
        GlobalConsole::writeLine(QStringLiteral("first"), at(1, 2, 3, 4));
        GlobalConsole::writeLine(QStringLiteral("second"), at(1, 2, 3, 5));
        // Items of one type keep their own CR LF and are joined by LF.
        QCOMPARE(GlobalConsole::currentText(), QStringLiteral("01:02:03.005 second\r\n\n01:02:03.004 first\r\n"));
    }

    void disabledTypesAreDropped()
    {
        GlobalConsole::disableType(QStringLiteral("NOISE"), true);
        GlobalConsole::disableType(QStringLiteral("NOISE"), true);
        GlobalConsole::writeItem(QStringLiteral("x"), QStringLiteral("NOISE"), at(0, 0, 0, 0));
        QVERIFY(GlobalConsole::currentText().isEmpty());
        GlobalConsole::disableType(QStringLiteral("NOISE"), false); // removes every occurrence
        GlobalConsole::writeItem(QStringLiteral("x"), QStringLiteral("NOISE"), at(0, 0, 0, 0));
        QCOMPARE(GlobalConsole::currentText(), QStringLiteral("00:00:00.000 NOISE x\r\n"));
    }

    void writerOperandsAreSeparateItems()
    {
        kxDebug() << 'A' << short(-3) << 42 << 0.1f << 1234567.0 << "text" << QStringLiteral("q");
        const QString text = GlobalConsole::currentText();
        const QStringList items = text.split(QStringLiteral("\r\n\n"));
        QCOMPARE(items.size(), 7);
        auto itemText = [](const QString& item) { return item.section(QLatin1Char(' '), 1).trimmed(); };
        QCOMPARE(itemText(items[6]), QStringLiteral("65")); // a char is its code
        QCOMPARE(itemText(items[5]), QStringLiteral("-3"));
        QCOMPARE(itemText(items[4]), QStringLiteral("42"));
        QCOMPARE(itemText(items[3]), QStringLiteral("0.1"));
        QCOMPARE(itemText(items[2]), QStringLiteral("1.23457e+06"));
        QCOMPARE(itemText(items[1]), QStringLiteral("text"));
        QCOMPARE(itemText(items[0]), QStringLiteral("q"));
    }

    void statuses()
    {
        QSignalSpy added(GlobalConsole::Instance(), &GlobalConsole::newStatusName);
        QSignalSpy updated(GlobalConsole::Instance(), &GlobalConsole::updatedStatus);
        QSignalSpy cleared(GlobalConsole::Instance(), &GlobalConsole::statusCleared);
        GlobalConsole::setStatus(QStringLiteral("a"), QStringLiteral("1"));
        GlobalConsole::setStatus(QStringLiteral("a"), QStringLiteral("2"));
        GlobalConsole::setStatus(QStringLiteral("b"), QStringLiteral("3"));
        QCOMPARE(added.count(), 2);
        QCOMPARE(updated.count(), 3);
        QCOMPARE(GlobalConsole::getStatus(QStringLiteral("a")), QStringLiteral("2"));
        GlobalConsole::clearStatus(QStringLiteral("a"));
        QCOMPARE(GlobalConsole::getStatusNames(), QList<QString>({ "b" }));
        GlobalConsole::clearStatus(QString());
        QVERIFY(GlobalConsole::getStatusNames().isEmpty());
        QCOMPARE(cleared.count(), 2);
        QCOMPARE(cleared.last().first().toString(), QString());
    }

    void runningAverageWeighsCountMinusOne()
    {
        QSignalSpy named(GlobalConsole::Instance(), &GlobalConsole::newAverageName);
        QCOMPARE(GlobalConsole::countAverage(QStringLiteral("x"), 5, 10), 5.0);
        QCOMPARE(GlobalConsole::countAverage(QStringLiteral("x"), 7, 10), 7.0);
        QCOMPARE(GlobalConsole::countAverage(QStringLiteral("x"), 9, 10), 8.0);
        QCOMPARE(named.count(), 1);
        QCOMPARE(GlobalConsole::getAverage(QStringLiteral("x")), 8.0);

        // Capped at limit: limit - 1 old parts to one new part.
        for (int i = 0; i < 20; ++i)
            GlobalConsole::countAverage(QStringLiteral("capped"), i, 3);
        const double before = GlobalConsole::getAverage(QStringLiteral("capped"));
        QCOMPARE(GlobalConsole::countAverage(QStringLiteral("capped"), 100, 3), (2 * before + 100) / 3);

        for (int limit : { 0, -4 }) {
            const QString name = QStringLiteral("one%1").arg(limit);
            QCOMPARE(GlobalConsole::countAverage(name, 3, limit), 3.0);
            QCOMPARE(GlobalConsole::countAverage(name, 11, limit), 11.0);
        }
    }

    void fullOptimizationSilencesEverything()
    {
        GlobalConsole::FullOptimization = true;
        QSignalSpy averages(GlobalConsole::Instance(), &GlobalConsole::updatedAverage);
        QSignalSpy entries(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        QCOMPARE(GlobalConsole::countAverage(QStringLiteral("y"), 5, 10), 0.0);
        GlobalConsole::writeLine(QStringLiteral("hidden"));
        GlobalConsole::setStatus(QStringLiteral("s"), QStringLiteral("t"));
        QCOMPARE(averages.count(), 0);
        QCOMPARE(entries.count(), 0);
        QVERIFY(GlobalConsole::getStatusNames().isEmpty());
        QVERIFY(GlobalConsole::currentText().isEmpty());
        GlobalConsole::FullOptimization = false;
    }

    void loggedLinesCarryBothStamps()
    {
        const QString path = m_folder.filePath(QStringLiteral("console.log"));
        GlobalConsole::enableLogging(true, path);
        GlobalConsole::writeItem(QStringLiteral("ok"), QStringLiteral("BLE"), at(12, 0, 1, 2));
        GlobalConsole::enableLogging(false, path);
        GlobalConsole::writeItem(QStringLiteral("not logged"), QStringLiteral("BLE"), at(12, 0, 1, 3));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        const QRegularExpression line(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\tBLE\\t12:00:01\\.002 BLE ok\\r\\n$"));
        QVERIFY2(line.match(QString::fromUtf8(content)).hasMatch(), content.constData());
    }

    void keptItemsAreBounded()
    {
        for (int i = 0; i < GlobalConsole::MaxItemsPerType + 10; ++i)
            GlobalConsole::writeItem(QString::number(i), QStringLiteral("MANY"), at(0, 0, 0, 0));
        const QString text = GlobalConsole::currentText();
        QCOMPARE(text.count(QStringLiteral("\r\n")), GlobalConsole::MaxItemsPerType);
        QVERIFY(text.startsWith(QStringLiteral("00:00:00.000 MANY %1\r\n").arg(GlobalConsole::MaxItemsPerType + 9)));
    }
};

QTEST_GUILESS_MAIN(TestGlobalConsole)
#include "tst_globalconsole.moc"
