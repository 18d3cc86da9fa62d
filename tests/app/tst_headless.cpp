#include "formats/EDFReader.h"
#include "support/ProgramUnderTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cmath>

// The headless program as a user runs it: a real process, its exit code, its stderr and the
// files it writes.
class TestHeadless : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

    struct Run
    {
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };

    QProcessEnvironment environment() const { return ProgramUnderTest::isolatedEnvironment(m_home); }

    static QByteArray httpGet(const QString& url) { return ProgramUnderTest::httpGet(url); }

    Run run(QStringList arguments, int timeoutMs = 30000)
    {
        if (arguments.contains(QStringLiteral("--headless")) && !arguments.contains(QStringLiteral("--api-port")))
            arguments << QStringLiteral("--no-api");
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), arguments);
        Run result;
        if (!process.waitForFinished(timeoutMs)) {
            process.kill();
            process.waitForFinished();
            return result;
        }
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    static QList<QList<double>> readCsv(const QString& path, QStringList& header)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QList<QByteArray> lines = file.readAll().split('\n');
        header = QString::fromUtf8(lines.first()).split(QLatin1Char(';'));
        QList<QList<double>> rows;
        for (qsizetype i = 1; i < lines.size(); ++i) {
            if (lines[i].isEmpty())
                continue;
            QList<double> row;
            for (const QByteArray& cell : lines[i].split(';')) {
                if (!cell.isEmpty())
                    row.append(cell.toDouble());
            }
            rows.append(row);
        }
        return rows;
    }

private Q_SLOTS:
    void generatorSinesAsCsv()
    {
        const QString csv = m_home.filePath(QStringLiteral("out/sines.csv"));
        const Run result = run({ "--headless", "--device", "generator", "--set", "SignalType=Sine", "--set",
                                 "GeneratorSamplingRate=250", "--set", "HPF=0", "--set", "LPF=0", "--set", "BSF=0",
                                 "--duration", "2", "--csv", csv });
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.err.isEmpty(), result.err.constData());

        QStringList header;
        const QList<QList<double>> rows = readCsv(csv, header);
        QCOMPARE(header, QStringList({ "t", "O1", "T3", "Fp1", "Fp2", "T4", "O2", "" }));
        QCOMPARE(rows.size(), 500); // two seconds at 250 Hz, one row per sample
        double peak = 0;
        int crossings = 0;
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const QList<double>& row = rows[i];
            QCOMPARE(row.size(), 7);
            QVERIFY(std::abs(row[0] - double(i) / 250.0) < 0.0006);
            for (int c = 2; c < 7; ++c)
                QCOMPARE(row[c], row[1]);
            // Filters off: the generator's own sine, from the first sample of the session.
            const double expected = 250.0 * std::sin(2.0 * M_PI * 10.0 * double(i) / 250.0);
            QVERIFY2(std::abs(row[1] - expected) < 0.05, qPrintable(QString::number(row[1])));
            peak = std::max(peak, std::abs(row[1]));
            if (i > 0 && (rows[i - 1][1] < 0) != (row[1] < 0))
                ++crossings;
        }
        QVERIFY2(peak > 249 && peak <= 250.001, qPrintable(QString::number(peak)));
        QVERIFY2(std::abs(crossings - 40) <= 1, qPrintable(QString::number(crossings))); // 10 Hz for 2 s
    }

    void metricsPerSpectrumStep()
    {
        const QString csv = m_home.filePath(QStringLiteral("metrics.csv"));
        const Run result = run({ "--headless", "--set", "SignalType=Sine", "--set", "SpectrumWindowSeconds=1",
                                 "--duration", "3", "--csv-metrics", csv });
        QCOMPARE(result.exitCode, 0);
        QStringList header;
        const QList<QList<double>> rows = readCsv(csv, header);
        QCOMPARE(header.size(), 1 + 6 * 5 + 2 + 1);
        QCOMPARE(header.mid(0, 3), QStringList({ "t", "O1_alpha", "O1_beta" }));
        QCOMPARE(header.mid(31, 2), QStringList({ "meditation", "concentration" }));
        // One row per 0.1 s step once the first 1 s window is full.
        QVERIFY2(rows.size() >= 18 && rows.size() <= 21, qPrintable(QString::number(rows.size())));
        for (const QList<double>& row : rows) {
            QCOMPARE(row.size(), 33);
            QVERIFY(row[1] > 50); // a 10 Hz sine is mostly alpha
            QVERIFY(row[31] >= 0 && row[31] <= 100);
        }
    }

    void recordsWhileStreaming()
    {
        const QString stem = m_home.filePath(QStringLiteral("records/run"));
        const Run result = run({ "--headless", "--duration", "2", "--record", stem + ".edf" });
        QCOMPARE(result.exitCode, 0);
        QVERIFY(QFileInfo(stem + ".edf").size() > 256);
        QVERIFY(QFileInfo(stem + ".oxd").size() > 12);
        QFile log(stem + ".log");
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains("\tStopRecord\t"));

        const Run refused = run({ "--headless", "--duration", "1", "--record", "/proc/no/such/folder/rec" });
        QCOMPARE(refused.exitCode, 1);
        QCOMPARE(refused.err.trimmed().count('\n'), 0);
        QVERIFY(refused.err.contains("cannot record"));
    }

    void playsARecording()
    {
        const QString stem = m_home.filePath(QStringLiteral("play/source"));
        QCOMPARE(run({ "--headless", "--duration", "3", "--set", "SignalType=Sine", "--record", stem }).exitCode, 0);
        const QString csv = m_home.filePath(QStringLiteral("play/out.csv"));
        const Run played = run({ "--headless", "--device", stem + ".edf", "--duration", "1", "--set", "HPF=0",
                                 "--set", "LPF=0", "--set", "BSF=0", "--csv", csv });
        QCOMPARE(played.exitCode, 0);
        QStringList header;
        const QList<QList<double>> rows = readCsv(csv, header);
        QCOMPARE(header.mid(0, 3), QStringList({ "t", "O1", "T3" }));
        QCOMPARE(rows.size(), 125); // the recording's rate
        double peak = 0;
        for (const QList<double>& row : rows)
            peak = std::max(peak, std::abs(row[1]));
        // The recorded, filtered sine; the high-pass start-up overshoots a little.
        QVERIFY2(peak > 200 && peak < 300, qPrintable(QString::number(peak)));

        // As fast as possible: every sample of the file exactly once, then the program ends.
        const QString all = m_home.filePath(QStringLiteral("play/all.csv"));
        QCOMPARE(run({ "--headless", "--device", stem + ".edf", "--speed", "0", "--csv", all }).exitCode, 0);
        QCOMPARE(readCsv(all, header).size(), 3 * 125);
        QCOMPARE(run({ "--headless", "--device", stem + ".edf", "--speed", "0", "--duration", "1", "--csv", all })
                     .exitCode,
                 0);
        QCOMPARE(readCsv(all, header).size(), 125);

        const Run missing = run({ "--headless", "--device", m_home.filePath(QStringLiteral("none.bdf")) });
        QCOMPARE(missing.exitCode, 1);
        QCOMPARE(missing.err.trimmed().count('\n'), 0);
    }

    void csvGrowsWhileStreamingAndStopsCleanly()
    {
        const QString csv = m_home.filePath(QStringLiteral("live.csv"));
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), { "--headless", "--no-api", "--csv", csv });
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(csv).size() > 2000, 10000);
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        QVERIFY(content.endsWith(";\n")); // the last row is complete
    }

    // A client drives the running program over HTTP: it sees the streaming generator, gets
    // the reference page, and closes the program, which then exits cleanly.
    // With the generator, or with no device until a client starts one.
    void commandInterfaceDrivesTheRun_data()
    {
        QTest::addColumn<QStringList>("device");
        // A saved custom algorithm runs without a window too.
        QTest::newRow("generator") << QStringList { "--set", R"(CustomAlgorithms=[{"kind":"share","name":"alphaShare",)"
                                                            R"("visibleToControl":true,"from":8,"to":12}])" };
        QTest::newRow("none") << QStringList { "--device", "none" };
    }

    void commandInterfaceDrivesTheRun()
    {
        QFETCH(QStringList, device);
        const int port = ProgramUnderTest::freePort();
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), QStringList { "--headless", "--api-port", QString::number(port) } + device);
        QVERIFY(process.waitForStarted());
        const QString address = QStringLiteral("http://127.0.0.1:%1/").arg(port);
        const auto call = [&address](const QString& command) {
            return QJsonDocument::fromJson(httpGet(address + command)).object();
        };

        if (device.first() == QLatin1String("--set")) {
            QTRY_VERIFY_WITH_TIMEOUT(call("bci").contains("alphaShare"), 15000);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(call("currentDeviceInfo").contains("result"), 15000);
            QVERIFY(call("currentDeviceInfo").value("device").isNull());
            QCOMPARE(call("rawData").value("error").toString(), QStringLiteral("Device is not connected"));
            QVERIFY(call("startSearch").value("result").toBool());
            int generator = -1;
            QTRY_VERIFY_WITH_TIMEOUT([&] {
                const QJsonArray found = call("listDevices").value("devices").toArray();
                for (int i = 0; i < found.size(); ++i)
                    generator = found.at(i).toObject().value("name").toString() == "GeneratorDevice" ? i : generator;
                return generator >= 0;
            }(), 5000);
            QVERIFY(call(QStringLiteral("startDevice?index=%1").arg(generator)).value("result").toBool());
        }
        QJsonObject info;
        QTRY_VERIFY_WITH_TIMEOUT((info = call("currentDeviceInfo")).value("device").isObject(), 15000);
        QCOMPARE(info.value("device").toObject().value("name").toString(), QStringLiteral("GeneratorDevice"));
        QVERIFY(info.value("currentFrequency").toDouble() > 0);
        QVERIFY(httpGet(address).contains("<cmd "));
        QCOMPARE(call("version").value("port").toInt(), port); // the port in use, not the setting

        QVERIFY(call("close").value("result").toBool());
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitCode(), 0);
    }

    // 200 annotations in one burst through the API land in the file, and the file holds the
    // recorded signal only: no records are added to carry them.
    void annotationBurstThroughTheApi()
    {
        const int port = ProgramUnderTest::freePort();
        const QString stem = m_home.filePath(QStringLiteral("burst"));
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(ORVEX_BINARY), { "--headless", "--api-port", QString::number(port), "--set",
                                                      "GeneratorSamplingRate=250", "--duration", "4", "--record", stem });
        QVERIFY(process.waitForStarted());
        const QString address = QStringLiteral("http://127.0.0.1:%1/").arg(port);
        QTRY_VERIFY_WITH_TIMEOUT(!httpGet(address + "version").isEmpty(), 15000);
        for (int i = 0; i < 200; ++i) {
            const QJsonObject reply = QJsonDocument::fromJson(
                httpGet(address + QStringLiteral("addEDFAnnotation?text=burst%20%1%20naïve%20électrode").arg(i))).object();
            QVERIFY2(reply.value("result").toBool(), qPrintable(QJsonDocument(reply).toJson()));
        }
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitCode(), 0);

        EDFReader reader(stem + QStringLiteral(".edf"));
        QVERIFY(reader.open());
        QVERIFY2(reader.lengthSamples() <= 4 * 250, qPrintable(QString::number(reader.lengthSamples())));
        QList<edf_annotation_struct> annotations;
        reader.getAnnotationList(annotations);
        int burst = 0;
        for (const edf_annotation_struct& annotation : annotations)
            burst += QString::fromUtf8(annotation.annotation).startsWith(QStringLiteral("burst "));
        QCOMPARE(burst, 200);
    }

    void informationOptions()
    {
        const Run help = run({ "--help" });
        QCOMPARE(help.exitCode, 0);
        QVERIFY(help.out.contains("--duration"));
        const Run version = run({ "--version" });
        QCOMPARE(version.exitCode, 0);
        QVERIFY(version.out.startsWith("OrvexPro "));
    }

    // Debug lines such as the generator's per-beat-sample trace show with --verbose only.
    void debugLinesOnlyWhenVerbose()
    {
        const QStringList ecg { "--headless", "--duration", "0.5", "--set", "SignalType=ECG" };
        QVERIFY(run(ecg + QStringList { "--verbose" }).err.contains("BAD ECG sample"));
        QVERIFY(!run(ecg).err.contains("BAD ECG sample"));
    }

    void printSettingsShowsEveryCapability()
    {
        const Run result = run({ "--print-settings", "--set", "GeneratorAmplitude=100" });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject all = QJsonDocument::fromJson(result.out).object();
        bool found = false;
        for (const QJsonValue& value : all.value(QStringLiteral("virtualDeviceSettings")).toArray()) {
            const QJsonObject capability = value.toObject();
            if (capability.value(QStringLiteral("name")).toString() == QLatin1String("GeneratorAmplitude")) {
                found = true;
                QCOMPARE(capability.value(QStringLiteral("value")).toVariant().toDouble(), 100.0);
            }
        }
        QVERIFY(found);
        QVERIFY(!all.value(QStringLiteral("settings")).toArray().isEmpty());
    }

    void badCommandLinesExitTwoWithOneLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown option") << QStringList { "--headless", "--frobnicate" };
        QTest::newRow("missing value") << QStringList { "--headless", "--duration" };
        QTest::newRow("bad duration") << QStringList { "--headless", "--duration", "soon" };
        QTest::newRow("unknown device") << QStringList { "--headless", "--device", "toaster" };
        QTest::newRow("not a recording") << QStringList { "--headless", "--device", "notes.txt" };
        QTest::newRow("record without a device") << QStringList { "--headless", "--device", "none", "--record", "x" };
        QTest::newRow("speed of the generator") << QStringList { "--headless", "--speed", "0" };
        QTest::newRow("negative speed") << QStringList { "--headless", "--device", "a.edf", "--speed", "-1" };
        QTest::newRow("unknown setting") << QStringList { "--headless", "--set", "Bogus=1" };
        QTest::newRow("not a number") << QStringList { "--headless", "--set", "HPF=abc" };
        QTest::newRow("out of range") << QStringList { "--headless", "--set", "GeneratorSamplingRate=5" };
        QTest::newRow("bad enum") << QStringList { "--headless", "--set", "SignalType=Square" };
        QTest::newRow("no equals") << QStringList { "--headless", "--set", "HPF" };
    }

    void badCommandLinesExitTwoWithOneLine()
    {
        QFETCH(QStringList, arguments);
        const Run result = run(arguments);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.err.trimmed().count('\n'), 0);
        QVERIFY(result.err.startsWith("orvexpro: "));
    }

    void runtimeFailuresExitOne()
    {
        const Run unwritable = run({ "--headless", "--duration", "1", "--csv", "/proc/no/such/folder/out.csv" });
        QCOMPARE(unwritable.exitCode, 1);
        QCOMPARE(unwritable.err.trimmed().count('\n'), 0);
        QVERIFY(unwritable.err.contains("cannot write"));

        const Run switchedOff = run({ "--headless", "--duration", "1", "--set", "GeneratorEnabled=false" });
        QCOMPARE(switchedOff.exitCode, 1);
        QCOMPARE(switchedOff.err.trimmed().count('\n'), 0);
    }

    void valuesSetForOneRunAreNotKept()
    {
        QCOMPARE(run({ "--headless", "--duration", "0.2", "--set", "HPF=7" }).exitCode, 0);
        const Run after = run({ "--print-settings" });
        for (const QJsonValue& value : QJsonDocument::fromJson(after.out).object().value("settings").toArray()) {
            const QJsonObject capability = value.toObject();
            if (capability.value(QStringLiteral("name")).toString() == QLatin1String("HPF"))
                QCOMPARE(capability.value(QStringLiteral("value")).toVariant().toDouble(), 2.0);
        }
    }
};

QTEST_GUILESS_MAIN(TestHeadless)
#include "tst_headless.moc"
