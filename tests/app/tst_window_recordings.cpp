// The Recordings screen in the real window: a record made with the buttons shows up, is
// reviewed, played and deleted as a person would do it.
#include "app/OrvexModel.h"
#include "core/CortexCore.h"
#include "formats/EDFReader.h"
#include "support/WindowHarness.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

using namespace WindowHarness;

namespace {

// An outside reader of the header: the patient subfields as MNE parses them, and the
// equipment subfield straight from the fixed header layout.
const char* HeaderScript = R"(
import sys, mne
raw = mne.io.read_raw_edf(sys.argv[1], preload=False, verbose='error')
s = raw._raw_extras[0]['subject_info']
b = s.get('birthday')
print(s.get('id'), s.get('sex'), b.strftime('%Y-%m-%d') if hasattr(b, 'strftime') else b, s.get('name'))
with open(sys.argv[1], 'rb') as f:
    print(f.read(168)[88:].decode('ascii').split()[4])
)";

QString textOf(QQuickItem* root, const char* name)
{
    QQuickItem* found = findItem(root, QLatin1String(name));
    return found ? found->property("text").toString() : QString();
}

} // namespace

class RecordingsWindowTest : public WindowTestBase
{
    Q_OBJECT
public:
    using WindowTestBase::WindowTestBase;

private:
    QString m_edf;

    void typeInto(const char* field, const QString& text)
    {
        QQuickItem* input = item(field);
        QVERIFY(input);
        input->forceActiveFocus();
        input->setProperty("text", QString());
        typeText(text);
        QTest::keyClick(window(), Qt::Key_Tab);
    }

    QQuickItem* recordRow(int row) const
    {
        return item(QStringLiteral("record_%1").arg(row).toLatin1().constData());
    }

private Q_SLOTS:
    void initTestCase() { QTRY_VERIFY_WITH_TIMEOUT(ui()->devices()->isDeviceStarted(), 10000); }

    void recordWithPatientAppearsFirstInTheList()
    {
        show(QStringLiteral("Recording"));
        typeInto("patientName", QStringLiteral("Ada Byron"));
        typeInto("patientCode", QStringLiteral("P042"));
        typeInto("patientEquipment", QStringLiteral("Cap21"));
        typeInto("patientBirthDate", QStringLiteral("1990-02-30"));
        QVERIFY(item("patientError")->isVisible());
        typeInto("patientBirthDate", QStringLiteral("1990-02-03"));
        QVERIFY(!item("patientError")->isVisible());
        ui()->recording()->setPatientGender(2);

        click(item("recordButton"));
        QTRY_VERIFY_WITH_TIMEOUT(ui()->recording()->duration() >= 2, 6000);
        item("annotationField")->forceActiveFocus();
        typeText(QStringLiteral("spike here"));
        QTest::keyClick(window(), Qt::Key_Return);
        QTRY_COMPARE(ui()->recording()->annotations()->rowCount(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(ui()->recording()->duration() >= 6, 8000);
        click(item("stopButton"));
        QTRY_VERIFY(!ui()->recording()->isRecording());
        for (const QString& file : ui()->recording()->lastFiles())
            m_edf = file.endsWith(QLatin1String(".edf")) ? file : m_edf;

        show(QStringLiteral("Recordings"));
        QCOMPARE(ui()->records()->records()->recordAt(0).path, QFileInfo(m_edf).absoluteFilePath());
        QQuickItem* top = recordRow(0);
        QVERIFY(top);
        QCOMPARE(textOf(top, "recordChannels"), QString::number(ui()->channels()->rowCount()));
        QCOMPARE(textOf(top, "recordRate"), QStringLiteral("250 Hz"));
        QCOMPARE(textOf(top, "recordAnnotations"), QStringLiteral("1"));
        saveScreenshot(QStringLiteral("recordings"));

        QProcess python;
        python.start(QStringLiteral(ORVEX_REFERENCE_PYTHON), { QStringLiteral("-c"), QString::fromLatin1(HeaderScript), m_edf });
        QVERIFY(python.waitForFinished(60000));
        const QStringList lines = QString::fromUtf8(python.readAllStandardOutput()).trimmed().split('\n');
        QVERIFY2(python.exitCode() == 0, python.readAllStandardError().constData());
        QCOMPARE(lines.value(0), QStringLiteral("P042 F 1990-02-03 Ada_Byron"));
        QCOMPARE(lines.value(1), QStringLiteral("Cap21"));
    }

    void reviewListsAndMarksTheAnnotation()
    {
        RecordReviewController* review = ui()->records()->review();
        click(findItem(recordRow(0), QStringLiteral("reviewRecordButton")));
        QTRY_VERIFY(review->isOpen() && item("reviewView")->isVisible());
        QCOMPARE(review->annotations()->rowCount(), 1);
        const int onsetMs = review->annotations()->data(review->annotations()->index(0), AnnotationListModel::OnsetMsRole).toInt();
        QVERIFY(onsetMs >= 1500);

        // A one-second window away from the note hides its marker; jumping brings it back.
        review->setWindowLength(1);
        review->setWindowStart(onsetMs / 1000.0 + 2);
        QTRY_VERIFY(!item("reviewMarker_0"));
        click(item("reviewAnnotation_0"));
        QTRY_COMPARE(review->currentAnnotation(), 0);
        QCOMPARE(review->windowStart(), std::round((onsetMs / 1000.0 - 0.1) * 250) / 250);
        QTRY_VERIFY(item("reviewMarker_0"));
        // The marker stands where the note lies in the window, and is drawn there.
        QQuickItem* plot = item("reviewPlot");
        QQuickItem* marker = item("reviewMarker_0");
        QCOMPARE(qRound(marker->x()), qRound((onsetMs / 1000.0 - review->windowStart()) * plot->width()));
        QTest::qWait(200);
        const QImage picture = grabItem(plot);
        const int markerX = int((marker->x() + 1) * picture.width() / plot->width());
        int accent = 0;
        for (int y = 0; y < picture.height(); ++y)
            accent += picture.pixelColor(markerX, y) == QColor(0x5e, 0xa8, 0xdc);
        QVERIFY2(accent > picture.height() / 2, qPrintable(QString::number(accent)));
        const int lanes = ui()->channels()->rowCount();
        for (int lane = 0; lane < lanes; ++lane) {
            const QImage band = picture.copy(0, picture.height() * lane / lanes, picture.width() / 2, picture.height() / lanes);
            QVERIFY2(countDifferent(band, picture.pixel(picture.width() - 2, 1)) > band.width() / 2, qPrintable(QString::number(lane)));
        }

        click(item("reviewZoomOutTime"));
        QCOMPARE(review->windowLength(), 2.0);
        const double before = review->windowStart();
        click(item("reviewForwardButton"));
        QCOMPARE(review->windowStart(), before + 1.0);
        review->setWindowLength(5);
        QTest::mouseMove(window(), QPoint(1, window()->height() - 1)); // no tooltip in the picture
        saveScreenshot(QStringLiteral("review"));
        click(item("closeReviewButton"));
        QTRY_VERIFY(!review->isOpen() && item("recordList")->isVisible());
    }

    void playerMovesPausesAndChangesPace()
    {
        RecordPlayerController* player = ui()->records()->player();
        click(findItem(recordRow(0), QStringLiteral("playRecordButton")));
        QTRY_VERIFY_WITH_TIMEOUT(player->isActive() && ui()->devices()->isDeviceStarted(), 5000);
        const double start = player->positionSeconds();
        QTRY_VERIFY(player->positionSeconds() > start + 0.5);

        player->seek(1.0);
        QTRY_COMPARE(item("playerSlider")->property("value").toDouble(), 1.0);
        click(item("playerPauseButton"));
        QVERIFY(player->isPaused());
        const double held = player->positionSeconds();
        QTest::qWait(400);
        QCOMPARE(player->positionSeconds(), held);
        click(item("playerPauseButton"));

        // The pace follows the wall clock, so the samples per second of streaming show the speed.
        const auto samplesPerSecond = [this] {
            qint64 samples = 0;
            QElapsedTimer elapsed;
            const auto link = QObject::connect(startup()->model()->engine(), &CortexCore::newDataByChannel, this,
                                               [&samples](const QList<QList<float>>& block) { samples += block.value(0).size(); });
            elapsed.start();
            QTest::qWait(1000);
            QObject::disconnect(link);
            return samples * 1000.0 / elapsed.elapsed();
        };
        QVERIFY(player->setSpeed(4));
        QCOMPARE(player->speed(), 4.0);
        const double fast = samplesPerSecond();
        QVERIFY2(fast > 2.5 * 250, qPrintable(QString::number(fast)));
        QVERIFY(!player->setSpeed(3));
        click(item("playerStopButton"));
        QTRY_VERIFY(!player->isActive());
    }

    void deleteAsksFirstAndRemovesEveryFile()
    {
        const RecordEntry record = ui()->records()->records()->recordAt(0);
        QVERIFY(record.files.size() >= 3); // EDF, side file, log
        QObject* dialog = window()->findChild<QObject*>(QStringLiteral("deleteRecordDialog"));
        click(findItem(recordRow(0), QStringLiteral("deleteRecordButton")));
        QTRY_VERIFY(dialog->property("opened").toBool());
        QMetaObject::invokeMethod(dialog, "reject");
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QVERIFY(QFileInfo::exists(record.path));

        click(findItem(recordRow(0), QStringLiteral("deleteRecordButton")));
        QTRY_VERIFY(dialog->property("opened").toBool());
        QMetaObject::invokeMethod(dialog, "accept");
        QTRY_COMPARE(ui()->records()->records()->rowOf(record.path), -1);
        for (const QString& name : record.files)
            QVERIFY2(!QFileInfo::exists(QFileInfo(record.path).dir().filePath(name)), qPrintable(name));

        click(item("openRecordsFolderButton"));
        QFile log(homePath(QStringLiteral("opened.txt")));
        QTRY_VERIFY(log.exists() && log.size() > 0);
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains(homePath(QStringLiteral("records")).toUtf8()));
    }
};

int main(int argc, char* argv[])
{
    return WindowHarness::run<RecordingsWindowTest>(argc, argv);
}

#include "tst_window_recordings.moc"
