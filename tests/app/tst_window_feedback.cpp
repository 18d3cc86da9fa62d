// The feedback, console and API screens in the real window on the generator.
#include "app/ui/ConsoleItemModel.h"
#include "services/GlobalConsole.h"
#include "support/WindowHarness.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QWebSocket>

using namespace WindowHarness;

namespace {

// The rows of the balloon's red skin; its middle, -1 when none is drawn.
double balloonMiddle(const QImage& image)
{
    double sum = 0;
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) {
        int red = 0;
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            red += c.red() > 150 && c.green() < 120 && c.blue() < 120;
        }
        if (red > 2) {
            sum += y;
            ++rows;
        }
    }
    return rows ? sum / rows : -1;
}

QStringList clipboardLines()
{
    return QGuiApplication::clipboard()->text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

class FeedbackWindowTest : public WindowTestBase
{
    Q_OBJECT
public:
    using WindowTestBase::WindowTestBase;

private:
    // The device's own values would replace the ones a test sets.
    void stopDevice()
    {
        ui()->devices()->stopDevice();
        QTRY_VERIFY(!ui()->devices()->isDeviceStarted());
    }

    // The newest listed request of this command (and client), -1 for none.
    int requestRow(const QString& command, const QString& client = QString()) const
    {
        ApiRequestModel* requests = ui()->api()->requests();
        for (int row = 0; row < requests->rowCount(); ++row) {
            if (requests->at(row).command == command && (client.isNull() || requests->at(row).client == client))
                return row;
        }
        return -1;
    }

    void waitForBalloon()
    {
        QQuickItem* view = item("balloonView");
        QTRY_VERIFY(qAbs(item("balloon")->y() - view->property("restingY").toDouble()) < 0.5);
        QTest::qWait(50);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QTRY_VERIFY_WITH_TIMEOUT(ui()->devices()->isDeviceStarted(), 10000);
        show(QStringLiteral("Feedback"));
    }

    // A client's choice shows in the window and the window's choice shows to clients.
    void viewIsSharedWithClients()
    {
        const QMap<QString, const char*> views = { { "bars", "feedbackBars" },
                                                   { "balloon", "balloonView" },
                                                   { "spectrum", "feedbackSpectrum" } };
        for (auto it = views.cbegin(); it != views.cend(); ++it) {
            const QJsonObject reply = apiCall(QStringLiteral("gameManage?screen=") + it.key());
            QVERIFY(reply.value("result").toBool());
            QTRY_VERIFY2(item(it.value())->isVisible(), it.value());
            for (auto other = views.cbegin(); other != views.cend(); ++other)
                QCOMPARE(item(other.value())->isVisible(), other == it);
        }
        QTRY_VERIFY_WITH_TIMEOUT(item("feedbackSpectrumPlot")->property("framesDrawn").toInt() > 0, 10000);
        QVERIFY(!apiCall(QStringLiteral("gameManage?screen=nothing")).value("result").toBool());
        QVERIFY(item("feedbackSpectrum")->isVisible());

        click(item("feedbackChoice_balloon"));
        QCOMPARE(apiCall(QStringLiteral("gameManage")).value("current").toString(), QStringLiteral("balloon"));
    }

    void barsShowTheLevels_data()
    {
        QTest::addColumn<double>("meditation");
        QTest::addColumn<double>("concentration");
        QTest::addColumn<double>("meditationShare");
        QTest::addColumn<double>("concentrationShare");
        QTest::newRow("middle") << 30.0 << 70.0 << 0.3 << 0.7;
        QTest::newRow("ends") << 0.0 << 100.0 << 0.0 << 1.0;
        // Unlimited levels pass 100; no level yet is -1.
        QTest::newRow("beyond") << 130.0 << -1.0 << 1.0 << 0.0;
    }

    void barsShowTheLevels()
    {
        QFETCH(double, meditation);
        QFETCH(double, concentration);
        QFETCH(double, meditationShare);
        QFETCH(double, concentrationShare);
        stopDevice();
        ui()->feedback()->setCurrent(QStringLiteral("bars"));
        ui()->feedback()->setLevels(meditation, concentration);
        const auto share = [this](const char* fill, const char* track) {
            return item(fill)->height() / (item(track)->height() - 4);
        };
        QTRY_VERIFY(qAbs(share("meditationFill", "meditationTrack") - meditationShare) < 0.01);
        QTRY_VERIFY(qAbs(share("concentrationFill", "concentrationTrack") - concentrationShare) < 0.01);
    }

    // Equal steps of concentration move the drawn balloon by equal steps upwards.
    void balloonFollowsConcentration()
    {
        stopDevice();
        ui()->feedback()->setCurrent(QStringLiteral("balloon"));
        QList<double> middles;
        for (const double level : { 20.0, 50.0, 80.0 }) {
            ui()->feedback()->setLevels(40, level);
            waitForBalloon();
            middles.append(balloonMiddle(grabItem(item("balloonView"))));
            QVERIFY(middles.last() >= 0);
        }
        const double height = grabItem(item("balloonView")).height();
        const double firstStep = middles[0] - middles[1];
        const double secondStep = middles[1] - middles[2];
        QVERIFY2(firstStep > height * 0.1, qPrintable(QString::number(firstStep)));
        QVERIFY2(qAbs(firstStep - secondStep) < 3, qPrintable(QStringLiteral("%1 %2").arg(firstStep).arg(secondStep)));
        saveScreenshot(QStringLiteral("feedback"));
    }

    void fullScreenAndBackWithEscape()
    {
        click(item("fullScreenButton"));
        QTRY_COMPARE(window()->visibility(), QWindow::FullScreen);
        QTRY_COMPARE(item("feedbackStage")->width(), qreal(window()->width()));
        QTest::keyClick(window(), Qt::Key_Escape);
        QTRY_VERIFY(!ui()->feedback()->fullScreen());
        QTRY_VERIFY(window()->visibility() != QWindow::FullScreen);
        QTRY_VERIFY(item("feedbackStage")->width() < window()->width());
    }

    void consoleFilters_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("all") << QString() << "zq-marker" << QStringList{ "alpha", "beta", "gamma" };
        QTest::newRow("one type") << "ZQA" << "" << QStringList{ "alpha" };
        QTest::newRow("ignoring case") << QString() << "BETA ZQ" << QStringList{ "beta" };
        QTest::newRow("general lines") << "General" << "zq-marker" << QStringList{ "gamma" };
        QTest::newRow("none") << "ZQB" << "alpha" << QStringList{};
    }

    // What is shown is what "copy all shown" puts on the clipboard.
    void consoleFilters()
    {
        QFETCH(QString, type);
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        show(QStringLiteral("Console"));
        ConsoleController* console = ui()->console();
        if (!console->typeChoices().contains(QStringLiteral("ZQA"))) {
            GlobalConsole::writeItem(QStringLiteral("alpha zq-marker"), QStringLiteral("ZQA"));
            GlobalConsole::writeItem(QStringLiteral("beta zq-marker"), QStringLiteral("ZQB"));
            GlobalConsole::writeLine(QStringLiteral("gamma zq-marker"));
            QTRY_VERIFY(console->typeChoices().contains(QStringLiteral("ZQB")));
        }
        console->setTypeChoice(type.isEmpty() ? 0 : int(console->typeChoices().indexOf(type)));
        click(item("consoleFilterField"));
        QTest::keySequence(window(), QKeySequence::SelectAll);
        QTest::keyClick(window(), Qt::Key_Delete);
        typeText(text);
        QCOMPARE(console->filterText(), text);

        QGuiApplication::clipboard()->clear();
        click(item("consoleCopyAllButton"));
        const QStringList lines = clipboardLines();
        QCOMPARE(lines.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i)
            QVERIFY2(lines[i].contains(expected[i] + QStringLiteral(" zq-marker")), qPrintable(lines[i]));
        QCOMPARE(console->shownCount(), expected.size());
    }

    void consoleCopiesTheSelection()
    {
        ConsoleController* console = ui()->console();
        console->setTypeChoice(0);
        console->setFilterText(QStringLiteral("zq-marker"));
        console->select(0);
        console->select(2, Qt::ShiftModifier);
        console->select(1, Qt::ControlModifier);
        click(item("consoleCopySelectedButton"));
        const QStringList lines = clipboardLines();
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines[0].endsWith(QStringLiteral(" ZQA alpha zq-marker")));
        QVERIFY(lines[1].endsWith(QStringLiteral(" gamma zq-marker")));
        console->setFilterText(QString());
    }

    // The file shown is the one the lines go to.
    void consoleShowsTheLogFile()
    {
        click(item("consoleLoggingSwitch"));
        QTRY_VERIFY(ui()->console()->loggingEnabled());
        GlobalConsole::writeLine(QStringLiteral("logged zq-marker"));
        QFile log(item("consoleLogPath")->property("text").toString());
        QVERIFY2(log.open(QIODevice::ReadOnly), qPrintable(log.fileName()));
        QVERIFY(log.readAll().contains("logged zq-marker"));
        QVERIFY(item("consoleLogPath")->isVisible());
        ui()->console()->flush();
        QTest::qWait(300); // the switch's handle slides over
        saveScreenshot(QStringLiteral("console"));
    }

    // Only the newest items stay, whether they come in one batch or many.
    void consoleListIsBounded()
    {
        ConsoleItemModel model(3);
        QList<ConsoleItem> items;
        for (int i = 0; i < 5; ++i)
            items.append(ConsoleItem::parse(QString(), QStringLiteral("10:00:00.000 line %1\r\n").arg(i)));
        model.append(items.mid(0, 2));
        model.setSelected(0, true);
        model.append(items.mid(2));
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.at(0).text, QStringLiteral("line 2"));
        QCOMPARE(model.at(2).text, QStringLiteral("line 4"));
        QCOMPARE(model.selectedCount(), 0);
        QCOMPARE(model.rowOfSerial(model.at(1).serial), 1);
    }

    void apiShowsPortAndRequests()
    {
        show(QStringLiteral("API"));
        QVERIFY(item("apiHttpAddress")->property("text").toString().contains(
            QStringLiteral(":%1/").arg(environment().apiPort)));
        QVERIFY(apiCall(QStringLiteral("version")).value("result").toBool());
        QVERIFY(!apiCall(QStringLiteral("noSuchCommand")).value("result").toBool());
        // The web view's own requests (its icon) may come between, so rows are looked up.
        ApiRequestModel* requests = ui()->api()->requests();
        QTRY_VERIFY(requestRow(QStringLiteral("nosuchcommand")) >= 0);
        const int failed = requestRow(QStringLiteral("nosuchcommand"));
        const int succeeded = requestRow(QStringLiteral("version"));
        QVERIFY(succeeded > failed); // newest first
        QVERIFY(!requests->at(failed).result && !requests->at(failed).error.isEmpty());
        QVERIFY(requests->at(succeeded).result);
        QCOMPARE(requests->at(succeeded).client, QStringLiteral("127.0.0.1"));
    }

    void referencePageIsShown()
    {
        QQuickItem* view = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT((view = item("apiReferenceView")) || item("apiReferenceFallback")->isVisible(), 10000);
        if (!view) {
            QVERIFY(item("apiFallbackBrowserButton")->isVisible());
            return;
        }
        QTRY_VERIFY_WITH_TIMEOUT(view->property("title").toString().contains(QStringLiteral("API")), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(view->property("loadProgress").toInt() == 100, 20000);
        QImage shown = grabItem(view);
        QTRY_VERIFY((shown = grabItem(view), countDifferent(shown, shown.pixel(0, 0)) > 500));
        saveScreenshot(QStringLiteral("api"));
    }

    void apiListsWebSocketClients()
    {
        if (!ui()->api()->webSocketListening())
            QSKIP("another program holds the WebSocket port");
        QWebSocket socket;
        socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(ui()->api()->webSocketPort())));
        QTRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);
        const QString address = QStringLiteral("127.0.0.1:%1").arg(socket.localPort());
        QTRY_COMPARE(ui()->api()->clients()->rowCount(), 1);
        QCOMPARE(ui()->api()->clients()->addressAt(0), address);
        socket.sendTextMessage(QStringLiteral("listDevices"));
        QTRY_VERIFY(requestRow(QStringLiteral("listdevices"), address) >= 0);
        saveScreenshot(QStringLiteral("api"));
        socket.close();
        QTRY_COMPARE(ui()->api()->clients()->rowCount(), 0);
    }
};

int main(int argc, char* argv[])
{
    return WindowHarness::run<FeedbackWindowTest>(argc, argv);
}

#include "tst_window_feedback.moc"
