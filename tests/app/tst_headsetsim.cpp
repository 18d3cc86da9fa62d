#include "formats/EDFReader.h"
#include "formats/OxdReader.h"
#include "support/ProgramUnderTest.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

// The simulated Bluetooth headset through the real program: it is found, started at its
// channel mode's rate, streams through the real protocol and decoder, and its faults reach
// the user the way a real headset's would.
class TestHeadsetSim : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    struct Run
    {
        int exitCode = -1;
        QString err;
        QList<QList<double>> rows;
        QStringList header;
    };

    Run run(const QString& tag, const QStringList& extra, double seconds)
    {
        const QString csv = m_home.filePath(tag + QStringLiteral(".csv"));
        QStringList arguments = { "--headless", "--device", "headset-sim", "--no-api", "--verbose", "--set", "HPF=0",
                                  "--set", "LPF=0", "--set", "BSF=0", "--csv", csv,
                                  "--duration", QString::number(seconds) };
        arguments += extra;
        QProcess process;
        process.setProcessEnvironment(ProgramUnderTest::isolatedEnvironment(m_home));
        process.start(QStringLiteral(ORVEX_BINARY), arguments);
        Run result;
        if (!process.waitForFinished(60000)) {
            process.kill();
            process.waitForFinished();
            return result;
        }
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.err = QString::fromUtf8(process.readAllStandardError());
        QFile file(csv);
        if (!file.open(QIODevice::ReadOnly))
            return result;
        const QList<QByteArray> lines = file.readAll().split('\n');
        result.header = QString::fromUtf8(lines.value(0)).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (qsizetype i = 1; i < lines.size(); ++i) {
            QList<double> row;
            for (const QByteArray& cell : lines[i].split(';')) {
                if (!cell.isEmpty())
                    row.append(cell.toDouble());
            }
            if (!row.isEmpty())
                result.rows.append(row);
        }
        return result;
    }

    static double spread(const QList<QList<double>>& rows, int column)
    {
        double sum = 0, squares = 0;
        for (const QList<double>& row : rows) {
            sum += row.value(column);
            squares += row.value(column) * row.value(column);
        }
        const double mean = sum / rows.size();
        return std::sqrt(std::max(0.0, squares / rows.size() - mean * mean));
    }

private Q_SLOTS:
    void streamsAtTheChannelModesRate_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("rate");
        QTest::newRow("8 channels") << "OX8G (0031)" << 8 << 125;
        QTest::newRow("2 channels") << "Kelvo (12)" << 2 << 500;
        QTest::newRow("6x3 format") << "Orvex-6G (3)" << 6 << 125;
    }

    void streamsAtTheChannelModesRate()
    {
        QFETCH(QString, name);
        QFETCH(int, channels);
        QFETCH(int, rate);
        const Run result = run(QTest::currentDataTag(), { "--set", "HeadsetSimName=" + name }, 2);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(int(result.header.size()), channels + 1);
        QCOMPARE(int(result.rows.size()), 2 * rate);
        QCOMPARE(result.rows.last().first(), (2.0 * rate - 1) / rate);
        QVERIFY(result.err.contains(QStringLiteral("RATE")));
        QVERIFY(!result.err.contains(QStringLiteral("Lost packet")));
        // EEG-like: tens of microvolts, different on every channel.
        for (int c = 1; c <= channels; ++c) {
            const double s = spread(result.rows, c);
            QVERIFY2(s > 3 && s < 100, qPrintable(QString::number(s)));
        }
        QVERIFY(result.rows[10][1] != result.rows[10][2]);
    }

    void packetLossIsReportedAndStoodIn()
    {
        const Run result = run(QStringLiteral("loss"), { "--set", "HeadsetSimPacketLoss=10" }, 2);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.count(QStringLiteral("Lost packet [6ch]")) >= 5);
        QVERIFY(result.err.contains(QStringLiteral("Data grabber lost packet")));
        QCOMPARE(int(result.rows.size()), 250); // lost packets keep their place in time
    }

    void droppedLinkIsReconnected()
    {
        const Run result = run(QStringLiteral("drop"),
                               { "--set", "HeadsetSimDisconnectAfter=1", "--set", "HeadsetSimAwayFor=1" }, 3);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.contains(QStringLiteral("LowEnergy controller disconnected")));
        QVERIFY(result.err.contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));
        QCOMPARE(int(result.rows.size()), 375); // two of the three seconds after the restart
    }

    // A recording that the lost link paused continues when the headset is back: the file holds
    // signal from after the reconnection, and the gap is marked.
    void recordingContinuesAfterReconnection()
    {
        const QString stem = m_home.filePath(QStringLiteral("reconnected"));
        const Run result = run(QStringLiteral("reconnect"),
                               { "--set", "HeadsetSimDisconnectAfter=1", "--set", "HeadsetSimAwayFor=1", "--record", stem },
                               4);
        QCOMPARE(result.exitCode, 0);
        EDFReader reader(stem + QStringLiteral(".edf"));
        QVERIFY(reader.open());
        // One second before the loss, the rest after it (one record may stay partial).
        QVERIFY2(reader.getChannelData(0, 0, 1000).size() >= 2 * 125, qPrintable(result.err.right(2000)));
        QList<edf_annotation_struct> annotations;
        reader.getAnnotationList(annotations);
        QStringList texts;
        for (const edf_annotation_struct& annotation : annotations)
            texts.append(QString::fromUtf8(annotation.annotation));
        QVERIFY2(texts.contains(QStringLiteral("Device disconnected")), qPrintable(texts.join('|')));
        QVERIFY2(texts.contains(QStringLiteral("Device reconnected")), qPrintable(texts.join('|')));
    }

    // Seconds with lost packets are marked in the recording; the side file has the same marks.
    void lostPacketsAreMarkedInTheRecording()
    {
        const QString stem = m_home.filePath(QStringLiteral("lossy"));
        const Run result = run(QStringLiteral("lossy"), { "--set", "HeadsetSimPacketLoss=10", "--record", stem }, 4);
        QCOMPARE(result.exitCode, 0);
        EDFReader reader(stem + QStringLiteral(".edf"));
        QVERIFY(reader.open());
        QList<edf_annotation_struct> annotations;
        reader.getAnnotationList(annotations);
        QStringList marks;
        int lost = 0;
        for (const edf_annotation_struct& annotation : annotations) {
            const QString text = QString::fromUtf8(annotation.annotation);
            const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("^Lost (\\d+) packets$")).match(text);
            if (match.hasMatch()) {
                marks.append(text);
                lost += match.captured(1).toInt();
            }
        }
        QVERIFY2(marks.size() >= 2 && marks.size() <= 5, qPrintable(marks.join('|'))); // one per second at most
        // The marks add up to the device's own count.
        const QRegularExpressionMatch total =
            QRegularExpression(QStringLiteral("Packets lost during the recording: (\\d+)")).match(result.err);
        QVERIFY(total.hasMatch());
        QCOMPARE(lost, total.captured(1).toInt());
        OxdReader side;
        QVERIFY(side.read(stem + QStringLiteral(".oxd")));
        QStringList sideMarks;
        for (const OxdReader::Annotation& note : side.annotations())
            if (note.text.startsWith(QStringLiteral("Lost ")))
                sideMarks.append(note.text);
        QCOMPARE(sideMarks, marks);
    }

    void silenceIsNoticedAndReconnected()
    {
        const Run result = run(QStringLiteral("silence"), { "--set", "HeadsetSimSilenceAfter=1" }, 2);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.contains(QStringLiteral("BLE DEVICE DISCONNECTED")));
        QVERIFY(result.err.contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));
        QCOMPARE(int(result.rows.size()), 250);
    }

    void wrongRateIsNoticedAndReconnected()
    {
        const Run result = run(QStringLiteral("rate"), { "--set", "HeadsetSimRateFactor=2" }, 14);
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.contains(QStringLiteral("KINDA WRONG DATA RATE")));
        QVERIFY(result.err.contains(QStringLiteral("WRONG DATA RATE!!!")));
        QVERIFY(result.err.contains(QStringLiteral("RESTART DEVICE OX8G (0031)")));
    }

    void unknownNameIsAClearError()
    {
        const Run result = run(QStringLiteral("name"), { "--set", "HeadsetSimName=Headphones" }, 1);
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.err.contains(QStringLiteral("HeadsetSimName")));
    }
};

QTEST_GUILESS_MAIN(TestHeadsetSim)
#include "tst_headsetsim.moc"
