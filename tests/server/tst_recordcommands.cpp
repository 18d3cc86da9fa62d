#include "formats/EDFReader.h"
#include "server/FakeServerContext.h"
#include "server/RecordsFolder.h"
#include "server/commands/AddEDFAnnotation.h"
#include "server/commands/AddFileToRecord.h"
#include "server/commands/AddLogItem.h"
#include "server/commands/ContinueRecord.h"
#include "server/commands/ExistingFiles.h"
#include "server/commands/GetUserRecords.h"
#include "server/commands/PauseRecord.h"
#include "server/commands/Records.h"
#include "server/commands/StartRecord.h"
#include "server/commands/StopRecord.h"

#include <QJsonArray>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>

using Args = QMap<QString, QString>;

// Record commands through the command objects, on a node streaming the generator. Blocks are
// pushed by the test without running the event loop, so a recording holds exactly them.
class TestRecordCommands : public QObject
{
    Q_OBJECT

    FakeServerContext* m_context = nullptr;
    QTemporaryDir m_outside;
    int m_pushed = 0;

    CortexCore* node() const { return m_context->getNode(0); }
    QString records() const { return m_context->getRecordsFolder(); }

    template<typename Command>
    QJsonObject run(Args args, bool expected = true, QByteArray body = {})
    {
        Command command(m_context);
        QJsonObject response;
        const bool result = command.processCommandWithBody(ReferrerHttp, response, args, body);
        if (result != expected)
            QTest::qFail(qPrintable(QStringLiteral("unexpected result: ")
                                    + QString::fromUtf8(QJsonDocument(response).toJson(QJsonDocument::Compact))),
                         __FILE__, __LINE__);
        return response;
    }

    // `seconds` of a 6-channel ramp at 125 Hz, in blocks of 25 samples.
    void push(int seconds)
    {
        for (int b = 0; b < seconds * 5; ++b) {
            QList<QList<float>> block(6);
            for (int c = 0; c < 6; ++c) {
                for (int k = 0; k < 25; ++k)
                    block[c].append(float((m_pushed + k) % 200 - 100 + c));
            }
            m_pushed += 25;
            node()->addDataChannelWise(block);
        }
    }

    static QByteArray readFile(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void writeFile(const QString& path, const QByteArray& data)
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(data);
    }

    static int headerNumber(const QByteArray& edf, int offset, int length)
    {
        return edf.mid(offset, length).trimmed().toInt();
    }

    // A folder outside the records folder with a file, and links to both from inside.
    void plantLinks()
    {
        writeFile(m_outside.filePath("secret.txt"), "secret");
        QDir().mkpath(records());
        QVERIFY(QFile::link(m_outside.path(), records() + "/out"));
        QVERIFY(QFile::link(m_outside.filePath("secret.txt"), records() + "/secret.lnk"));
        QVERIFY(QFile::link(m_outside.filePath("missing.txt"), records() + "/dangling.txt"));
    }

private Q_SLOTS:
    void init()
    {
        m_context = new FakeServerContext(1);
        QVERIFY(m_context->startGenerator());
        node()->setFilters(0, 0, 0, 0);
        m_pushed = 0;
    }

    void cleanup()
    {
        delete m_context;
        QDir(m_outside.path()).removeRecursively();
        QDir().mkpath(m_outside.path());
    }

    void recordNotStarted()
    {
        const QString text = QStringLiteral("Record has not been started");
        QCOMPARE(run<StopRecord>({}, false).value("error").toString(), text);
        QCOMPARE(run<PauseRecord>({}, false).value("error").toString(), text);
        QCOMPARE(run<ContinueRecord>({}, false).value("error").toString(), text);
        QCOMPARE(run<AddLogItem>({ { "text", "x" } }, false).value("error").toString(), text);
        QCOMPARE(run<AddFileToRecord>({ { "extension", "txt" }, { "body", "x" } }, false).value("error").toString(),
                 text);
        node()->stopDevice();
        QCOMPARE(run<StartRecord>({}, false).value("error").toString(), "Device is not connected");
    }

    // A disk that fills up ends the recording; the next record command says why.
    void fullDiskEndsTheRecordingAndTheNextCommandSaysWhy()
    {
        const QString disk = QDir(records()).filePath(QStringLiteral("small"));
        QDir().mkpath(disk);
        // A little more than the minute of this recording that a start needs (about 1 MB).
        if (QProcess::execute(QStringLiteral("mount"), { "-t", "tmpfs", "-o", "size=1100k", "tmpfs", disk }) != 0)
            QSKIP("a small tmpfs cannot be mounted here (needs root)");
        const auto unmount = qScopeGuard([&disk] { QProcess::execute(QStringLiteral("umount"), { disk }); });
        run<StartRecord>({ { "path", "small/session" } });
        QSignalSpy failed(node(), &CortexCore::recordFailed);
        push(120);
        QTRY_COMPARE(failed.size(), 1);
        QVERIFY(!node()->isRecording());
        QVERIFY(node()->isDeviceStarted()); // streaming goes on
        const QString error = run<StopRecord>({}, false).value("error").toString();
        QVERIFY2(error.startsWith(QStringLiteral("Record has not been started (last recording error: writing ")),
                 qPrintable(error));
    }

    void recordAndStopReturnsTheFiles()
    {
        AddFileToRecord addFile(m_context); // follows the record from its start
        run<AddLogItem>({ { "text", "lights off" }, { "type", "Annotation" } }); // kept for the record
        run<StartRecord>({ { "path", "session" } });
        QVERIFY(node()->isRecording());
        push(3);
        run<AddEDFAnnotation>({ { "text", "eyes closed" }, { "pos", "1000" }, { "dur", "500" } });
        run<AddLogItem>({ { "text", "alice\nsmith" }, { "type", "User" } });
        QJsonObject response;
        Args args { { "extension", ".csv" }, { "body", "YTtiCg==" }, { "format", "base64" } };
        QVERIFY(addFile.processCommand(ReferrerHttp, response, args));
        run<PauseRecord>({});
        QCOMPARE(run<PauseRecord>({}, false).value("error").toString(), "Record is already paused");
        push(1); // left out of the file
        run<ContinueRecord>({});
        QCOMPARE(run<ContinueRecord>({}, false).value("error").toString(), "Record is not paused");
        push(1);

        const QJsonObject stopped = run<StopRecord>({});
        QVERIFY(!node()->isRecording());
        QCOMPARE(stopped.value("baseName").toString(), "session");
        QMap<QString, QByteArray> files;
        for (const QJsonValue& file : stopped.value("files").toArray())
            files.insert(file["type"].toString(), QByteArray::fromBase64(file["data"].toString().toLatin1()));
        QCOMPARE(files.keys(), QStringList({ "edf", "log", "oxd" }));

        // The EDF as sent: its header's own sizes add up to the length; 4 one-second records.
        const QByteArray edf = files["edf"];
        QVERIFY(edf.startsWith("0       "));
        const int signalCount = headerNumber(edf, 252, 4);
        QCOMPARE(signalCount, 7); // six channels and the annotation signal
        QCOMPARE(headerNumber(edf, 184, 8), 256 * (signalCount + 1));
        QCOMPARE(headerNumber(edf, 236, 8), 4);
        int samplesPerRecord = 0;
        for (int s = 0; s < signalCount; ++s) {
            const int samples = headerNumber(edf, 256 + signalCount * 216 + s * 8, 8);
            if (s < 6)
                QCOMPARE(samples, 125);
            samplesPerRecord += samples;
        }
        QCOMPARE(edf.size(), 256 * (signalCount + 1) + 4 * samplesPerRecord * 2);
        QCOMPARE(edf, readFile(records() + "/session.edf"));

        // Read back: the annotation, the pause mark and the recorded samples.
        EDFReader reader(records() + "/session.edf");
        QVERIFY(reader.open());
        QList<edf_annotation_struct> marks;
        reader.getAnnotationList(marks);
        QStringList texts;
        for (const auto& mark : marks)
            texts << QString::fromUtf8(mark.annotation);
        QVERIFY2(texts.contains("eyes closed"), qPrintable(texts.join('|')));
        QVERIFY(std::any_of(texts.cbegin(), texts.cend(), [](const QString& t) { return t.startsWith("PAUSED "); }));
        const QList<float> first = reader.getChannelDataFloat(1, 0, 500);
        QCOMPARE(first.size(), 500);
        QCOMPARE(first[10], float(10 % 200 - 100 + 1));
        QCOMPARE(first[400], float((400 + 125) % 200 - 100 + 1)); // after the paused second

        const QString log = QString::fromUtf8(files["log"]);
        QVERIFY(log.contains("\tUser\talice smith\r\n"));
        QVERIFY(log.contains("\tAnnotation\tlights off\r\n"));
        QVERIFY(log.contains("\tStopReason\tSTOP ON WEB COMMAND\r\n"));
        QCOMPARE(readFile(records() + "/session.csv"), QByteArray("a;b\n"));
    }

    void startRecordPaths()
    {
        run<StartRecord>({ { "Path", "sub/take.EDF" } });
        QVERIFY(QFile::exists(records() + "/sub/take.edf"));
        run<StartRecord>({}); // stops the first, names the second after the time
        push(1);
        QVERIFY(node()->isRecording());
        node()->stopRecord();
        QStringList edfs = QDir(records()).entryList({ "*.edf" }, QDir::Files);
        QCOMPARE(edfs.size(), 1);
        const QRegularExpression timeName("^\\d{4}\\.\\d\\d\\.\\d\\d-\\d\\d\\.\\d\\d\\.\\d\\d\\.edf$");
        QVERIFY2(timeName.match(edfs[0]).hasMatch(), qPrintable(edfs[0]));

        // Any path, its folder created; an existing recording is refused and left as it is.
        const QString elsewhere = m_outside.filePath("study/abs");
        run<StartRecord>({ { "path", elsewhere + ".edf" } });
        push(1);
        node()->stopRecord();
        const QByteArray recorded = readFile(elsewhere + ".edf");
        QVERIFY(recorded.size() > 256);
        QCOMPARE(run<StartRecord>({ { "path", elsewhere } }, false).value("error").toString(),
                 QStringLiteral("Record '%1.edf' already exists").arg(elsewhere));
        QVERIFY(!node()->isRecording());
        QCOMPARE(readFile(elsewhere + ".edf"), recorded);
        run<StartRecord>({ { "path", "../escape" } });
        QVERIFY(QFile::exists(m_context->folderPath() + "/escape.edf"));
        node()->stopRecord();
    }

    void startRecordWithoutInvoking()
    {
        run<StartRecord>({ { "noinvoke", "1" }, { "path", "later" } });
        QVERIFY(!node()->isRecording());
        QTRY_VERIFY(node()->isRecording());
        QVERIFY(QFile::exists(records() + "/later.edf"));
        node()->stopRecord();
    }

    void argumentRefusals()
    {
        QCOMPARE(run<AddEDFAnnotation>({}, false).value("error").toString(), "Provide 'text' parameter");
        QCOMPARE(run<AddEDFAnnotation>({ { "text", "a" }, { "pos_ms", "soon" } }, false).value("error").toString(),
                 "Could not parse 'soon' as milliseconds");
        QCOMPARE(run<AddLogItem>({ { "type", "User" } }, false).value("error").toString(), "Provide 'text' parameter");

        AddFileToRecord addFile(m_context);
        run<StartRecord>({ { "path", "files" } });
        const auto addError = [&](Args args, QByteArray body = {}) {
            QJsonObject response;
            addFile.processCommandWithBody(ReferrerHttp, response, args, body);
            return response.value("error").toString();
        };
        QCOMPARE(addError({ { "body", "x" } }), "Provide file 'extension' argument");
        QCOMPARE(addError({ { "extension", "txt" } }), "Provide file body in 'body' argument");
        QCOMPARE(addError({ { "extension", "txt" }, { "body", "!!" }, { "format", "base64" } }),
                 "The file body is not valid base64");
        for (const char* extension : { "../x", "a/b", "a\\b", "x..y" })
            QCOMPARE(addError({ { "extension", extension }, { "body", "x" } }),
                     "The extension may not contain '/', '\\' or '..'");
        // The request body wins over the argument.
        QCOMPARE(addError({ { "extension", "json" }, { "body", "arg" } }, "{\"body\":1}"), QString());
        QCOMPARE(readFile(records() + "/files.json"), QByteArray("{\"body\":1}"));
        // A link planted where the file goes must not carry the write out of the folder.
        writeFile(m_outside.filePath("target.txt"), "keep");
        QVERIFY(QFile::link(m_outside.filePath("target.txt"), records() + "/files.lnk"));
        QCOMPARE(addError({ { "extension", "lnk" }, { "body", "overwrite" } }), RecordsFolder::outsideErrorText());
        QCOMPARE(readFile(m_outside.filePath("target.txt")), QByteArray("keep"));
        node()->stopRecord();
    }

    void recordsListGetSetRemove()
    {
        run<StartRecord>({ { "path", "one" } });
        push(1);
        run<StopRecord>({});
        writeFile(records() + "/one.notes.txt", "hello");

        const QJsonArray list = run<Records>({}).value("files").toArray();
        QCOMPARE(list.size(), 1);
        QCOMPARE(list[0]["path"].toString(), "one.edf");
        QCOMPARE(list[0]["name"].toString(), "one");
        QCOMPARE(list[0]["files"].toVariant().toStringList(),
                 QStringList({ "one.edf", "one.log", "one.notes.txt", "one.oxd" }));

        const Args get { { "action", "get" }, { "path", "one.edf" }, { "extensions", ".LOG, txt" } };
        const QJsonArray got = run<Records>(get).value("files").toArray();
        QCOMPARE(got.size(), 2);
        QCOMPARE(got[0]["type"].toString(), "log");
        QCOMPARE(QByteArray::fromBase64(got[0]["data"].toString().toLatin1()), readFile(records() + "/one.log"));
        QCOMPARE(got[1]["name"].toString(), "one.notes.txt");
        QCOMPARE(got[1]["size"].toInt(), 5);
        QCOMPARE(run<Records>({ { "action", "get" }, { "path", "one" } }).value("files").toArray().size(), 4);
        QCOMPARE(run<Records>({ { "action", "get" }, { "path", "two" } }, false).value("error").toString(),
                 "Record 'two' not found");

        QCOMPARE(run<Records>({ { "action", "set" }, { "path", "notes/a.txt" }, { "data", "text" } })
                     .value("response")
                     .toString(),
                 "File written");
        QCOMPARE(readFile(records() + "/notes/a.txt"), QByteArray("text"));
        run<Records>({ { "action", "set" }, { "path", records() + "/b.bin" }, { "data64", "AAEC" } });
        QCOMPARE(readFile(records() + "/b.bin"), QByteArray("\x00\x01\x02", 3));
        QCOMPARE(run<Records>({ { "action", "set" }, { "path", "c.txt" } }, false).value("error").toString(),
                 "Provide 'data' or 'data64'");

        QCOMPARE(run<Records>({ { "action", "delete" }, { "path", "one.notes.txt" } }).value("response").toString(),
                 "File removed");
        QVERIFY(!QFile::exists(records() + "/one.notes.txt"));
        run<Records>({ { "action", "remove" }, { "path", "notes/a.txt" } });
        QVERIFY(!QFile::exists(records() + "/notes/a.txt"));
        QCOMPARE(run<Records>({ { "action", "remove" }, { "path", "gone.txt" } }, false).value("error").toString(),
                 "File 'gone.txt' does not exist");
        QCOMPARE(run<Records>({ { "action", "get" } }, false).value("error").toString(), "Provide 'path' argument");
        QCOMPARE(run<Records>({ { "action", "move" } }, false).value("error").toString(), "Unknown action 'move'");
    }

    void pathsOutsideTheFolderAreRefused_data()
    {
        QTest::addColumn<Args>("args");
        QTest::addColumn<QString>("error");
        const QString outside = RecordsFolder::outsideErrorText();
        QTest::newRow("parent step") << Args { { "action", "remove" }, { "path", "../outside.txt" } } << outside;
        QTest::newRow("backslash parent step") << Args { { "action", "remove" }, { "path", "sub\\..\\x" } } << outside;
        QTest::newRow("absolute elsewhere") << Args { { "action", "remove" }, { "path", "@outside/secret.txt" } }
                                            << outside;
        QTest::newRow("file link") << Args { { "action", "delete" }, { "path", "secret.lnk" } } << outside;
        QTest::newRow("folder link") << Args { { "action", "remove" }, { "path", "out/secret.txt" } } << outside;
        QTest::newRow("get through link") << Args { { "action", "get" }, { "path", "out/secret" } } << outside;
        QTest::newRow("write through link") << Args { { "action", "set" }, { "path", "out/new.txt" }, { "data", "x" } }
                                            << outside;
        QTest::newRow("write below link") << Args { { "action", "set" }, { "path", "out/a/b.txt" }, { "data", "x" } }
                                          << outside;
        QTest::newRow("overwrite via link") << Args { { "action", "set" }, { "path", "secret.lnk" }, { "data", "x" } }
                                            << outside;
        QTest::newRow("broken link") << Args { { "action", "set" }, { "path", "dangling.txt" }, { "data", "x" } }
                                     << "Path is a broken link";
    }

    void pathsOutsideTheFolderAreRefused()
    {
        QFETCH(Args, args);
        QFETCH(QString, error);
        plantLinks();
        args["path"].replace("@outside", m_outside.path());
        QCOMPARE(run<Records>(args, false).value("error").toString(), error);
        QCOMPARE(readFile(m_outside.filePath("secret.txt")), QByteArray("secret"));
        QCOMPARE(QDir(m_outside.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList("secret.txt"));
    }

    void folderListingSkipsLinksOut()
    {
        plantLinks();
        writeFile(records() + "/inner/x.txt", "x");
        QVERIFY(QFile::link(records() + "/inner/x.txt", records() + "/inside.lnk"));
        const RecordsFolder folder(records());
        QCOMPARE(folder.listFiles(), QStringList({ "inner/x.txt", "inside.lnk" }));
        QString resolved, error;
        QVERIFY(folder.resolveExisting("inside.lnk", resolved, error));
        QCOMPARE(resolved, QFileInfo(records() + "/inner/x.txt").canonicalFilePath());
        QVERIFY(!folder.resolveExisting(".", resolved, error));
        QVERIFY(!RecordsFolder(records() + "/missing").resolveExisting("x.txt", resolved, error));

        const QJsonArray files = run<ExistingFiles>({}).value("files").toArray();
        QCOMPARE(files.size(), 2);
        QCOMPARE(files[0]["path"].toString(), "inner/x.txt");
        QCOMPARE(files[0]["size"].toInt(), 1);
    }

    void userRecordsReadTheLogs()
    {
        run<StartRecord>({ { "path", "alice/take" } });
        run<AddLogItem>({ { "text", "alice" }, { "type", "User" } });
        run<AddLogItem>({ { "text", "5f0c-11" }, { "type", "GUID" } });
        run<AddLogItem>({ { "text", "bob" }, { "type", "User" } }); // the first one counts
        run<StopRecord>({});
        writeFile(records() + "/2024.05.01-10.00.00.edf", "0       ");

        const QJsonArray files = run<GetUserRecords>({}).value("files").toArray();
        QCOMPARE(files.size(), 2);
        const QJsonObject bare = files[0].toObject();
        QCOMPARE(bare.value("name").toString(), "2024.05.01-10.00.00");
        QCOMPARE(bare.value("Date").toString(), "2024-05-01T10:00:00");
        QCOMPARE(bare.value("Timestamp").toString(),
                 QString::number(QDateTime(QDate(2024, 5, 1), QTime(10, 0)).toMSecsSinceEpoch()));
        QVERIFY(!bare.contains("User"));

        const QJsonObject take = files[1].toObject();
        QCOMPARE(take.value("path").toString(), "alice/take.edf");
        QCOMPARE(take.value("User").toString(), "alice");
        QCOMPARE(take.value("GUID").toString(), "5f0c-11");
        QCOMPARE(take.value("Device").toString(), "GeneratorDevice");
        const QMap<QString, QString> log = GetUserRecords::readLog(records() + "/alice/take.log", { "Timestamp" });
        QCOMPARE(take.value("Timestamp").toString(), log.value("Timestamp"));
        QVERIFY(QDateTime::fromString(take.value("Date").toString(), Qt::ISODateWithMs).isValid());
    }
};

QTEST_GUILESS_MAIN(TestRecordCommands)
#include "tst_recordcommands.moc"
