#include "FuzzEntries.h"

#include <QDir>
#include <QFile>
#include <QtTest>

// Replays every kept fuzzing input (seeds and former crashes) through the fuzz entries. An
// input passes when the parsers neither crash nor break a property; ASan builds also catch
// memory faults that a plain build lets through.
class TestFuzzRegressions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { FuzzEntries::quietConsole(); }

    void replay_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("path");
        int rows = 0;
        for (const QString& target : FuzzEntries::targets()) {
            for (const char* kind : {"seeds", "regressions"}) {
                const QDir dir(QStringLiteral(ORVEX_TEST_DIR "/%1/%2").arg(QLatin1String(kind), target));
                for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
                    const QString path = dir.filePath(name);
                    QTest::addRow("%s/%s/%s", kind, qPrintable(target), qPrintable(name))
                        << target << path;
                    ++rows;
                }
            }
        }
        // Every target has seeds; finding none means the folders moved.
        QVERIFY(rows >= FuzzEntries::targets().size());
    }

    void replay()
    {
        QFETCH(QString, target);
        QFETCH(QString, path);
        const FuzzEntries::Entry entry = FuzzEntries::entryFor(target);
        QVERIFY(entry);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        entry(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
    }
};

QTEST_GUILESS_MAIN(TestFuzzRegressions)
#include "tst_fuzz_regressions.moc"
