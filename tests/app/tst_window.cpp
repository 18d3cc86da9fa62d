// The real window on the generator under a real X server: what a person sees on each screen.
#include "formats/EDFReader.h"
#include "support/WindowHarness.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QSet>

using namespace WindowHarness;

namespace {
constexpr double GeneratorHz = 10;
}

class WindowTest : public WindowTestBase
{
    Q_OBJECT
public:
    using WindowTestBase::WindowTestBase;

private:
    QString m_recorded;

    QString text(int row, int role) const { return ui()->settings()->data(ui()->settings()->index(row), role).toString(); }

    // The row's delegate, scrolled into the list.
    QQuickItem* reveal(int row)
    {
        QMetaObject::invokeMethod(item("settingsList"), "positionViewAtIndex", Q_ARG(int, row), Q_ARG(int, 0));
        QTest::qWait(10);
        return item(qPrintable(QStringLiteral("setting_") + text(row, SettingsListModel::NameRole)));
    }

    // What the page's editor of this kind does when a person enters `value`.
    void enter(QQuickItem* shown, const QString& editor, int row, const QString& value)
    {
        if (editor == QLatin1String("bool")) {
            QObject* control = findItem(shown, QStringLiteral("editorSwitch"));
            control->setProperty("checked", value == QLatin1String("true"));
            QMetaObject::invokeMethod(control, "toggled");
        } else if (editor == QLatin1String("enum")) {
            const QStringList values = ui()->settings()->data(ui()->settings()->index(row), SettingsListModel::ChoiceValuesRole).toStringList();
            QMetaObject::invokeMethod(findItem(shown, QStringLiteral("editorChoice")), "activated", Q_ARG(int, int(values.indexOf(value))));
        } else {
            QObject* field = findItem(shown, QStringLiteral("editor"));
            field->setProperty("text", value);
            QMetaObject::invokeMethod(field, "editingFinished");
        }
    }

    QString validValue(int row) const
    {
        const QString editor = text(row, SettingsListModel::EditorRole);
        const QString now = text(row, SettingsListModel::ValueRole);
        if (editor == QLatin1String("bool"))
            return now == QLatin1String("true") ? QStringLiteral("false") : QStringLiteral("true");
        if (editor == QLatin1String("enum")) {
            const QStringList values = ui()->settings()->data(ui()->settings()->index(row), SettingsListModel::ChoiceValuesRole).toStringList();
            return values.at((values.indexOf(now) + 1) % values.size());
        }
        if (editor == QLatin1String("number")) {
            const QString minimum = text(row, SettingsListModel::MinimumRole);
            return minimum.toDouble() != now.toDouble() ? minimum : text(row, SettingsListModel::MaximumRole);
        }
        if (editor == QLatin1String("color"))
            return QStringLiteral("#123456");
        if (editor == QLatin1String("file")) {
            const QString copy = homePath(QStringLiteral("walked.edf"));
            QFile::copy(m_recorded, copy);
            return now == copy ? m_recorded : copy;
        }
        if (editor == QLatin1String("folder"))
            return homePath(QStringLiteral("walked"));
        return now + QStringLiteral("X");
    }

    // Null where every text is a value of the property.
    QString invalidValue(int row) const
    {
        const QString editor = text(row, SettingsListModel::EditorRole);
        if (editor == QLatin1String("bool"))
            return QStringLiteral("maybe");
        if (editor == QLatin1String("enum"))
            return QStringLiteral("NoSuchChoice");
        if (editor == QLatin1String("color"))
            return QStringLiteral("not a colour");
        if (editor == QLatin1String("number")) {
            const QString maximum = text(row, SettingsListModel::MaximumRole);
            return maximum.isEmpty() ? QStringLiteral("abc") : QString::number(maximum.toDouble() * 10 + 1);
        }
        return {};
    }

    // The value as an API client reads it (the key, when one is set, goes along).
    QString apiValue(const QString& name) const
    {
        SettingsListModel* model = ui()->settings();
        const QString key = text(model->rowOf(QStringLiteral("APIKey")), SettingsListModel::ValueRole);
        for (const QString type : { QString(), QStringLiteral("virtualdevices") }) {
            const QJsonObject reply = apiCall(QStringLiteral("getSettings?key=%1&type=%2&apikey=%3").arg(name, type, key));
            if (reply.contains(QLatin1String("value")))
                return reply.value(QLatin1String("value")).toString();
        }
        return QStringLiteral("<not answered>");
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(window());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        QVERIFY(window()->title().contains(QStringLiteral(ORVEX_VERSION)));
        QVERIFY(!QGuiApplication::windowIcon().isNull());
        QTRY_VERIFY_WITH_TIMEOUT(ui()->devices()->isDeviceStarted(), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(startup()->firstFrameMs() > 0, 5000);
        show(QStringLiteral("Devices"));
        QVERIFY(ui()->devices()->devices()->rowOf(QStringLiteral("GeneratorDevice")) >= 0);
        if (!ui()->devices()->isBluetoothAvailable()) // test machines have no adapter
            QVERIFY(item("devicesMessage")->isVisible()
                    && ui()->devices()->message().startsWith(QStringLiteral("No Bluetooth adapter")));
        saveScreenshot(QStringLiteral("devices"));
    }

    void tracesAreDrawnAndMove()
    {
        show(QStringLiteral("Signal"));
        QQuickItem* plot = item("tracePlot");
        QVERIFY(plot);
        QTRY_VERIFY_WITH_TIMEOUT(ui()->signal()->samplesShown() > 500, 5000);
        const QImage first = grabItem(plot);
        QTest::qWait(500);
        const QImage second = grabItem(plot);
        const QRgb background = first.pixel(first.width() - 2, 1);
        // Every lane carries a line, and the line has moved between the grabs.
        const int lanes = ui()->channels()->rowCount();
        for (int lane = 0; lane < lanes; ++lane) {
            const QImage band = first.copy(0, first.height() * lane / lanes, first.width(), first.height() / lanes);
            QVERIFY2(countDifferent(band, background) > band.width() / 2, qPrintable(QString::number(lane)));
        }
        QVERIFY(first != second);
        if (qEnvironmentVariableIsSet("ORVEX_SCREENSHOT_DIR"))
            QTest::qWait(4000); // a full screen of signal for the picture
        saveScreenshot(QStringLiteral("signal"));
    }

    void freezeKeepsThePicture()
    {
        ui()->signal()->setFrozen(true);
        QTest::qWait(200);
        const QImage frozen = grabItem(item("tracePlot"));
        QTest::qWait(400);
        QCOMPARE(grabItem(item("tracePlot")), frozen);
        ui()->signal()->setFrozen(false);
    }

    // A filter set by a client shows in the window at once, and the reverse.
    void filtersAreSharedWithTheApi()
    {
        const QJsonObject reply = QJsonDocument::fromJson(httpGet(QStringLiteral("setFilters?HPF=5"))).object();
        QVERIFY(reply.value("result").toBool());
        QCOMPARE(ui()->signal()->hpf(), 5.0);
        ui()->signal()->setLpf(30);
        const QJsonObject filters = QJsonDocument::fromJson(httpGet(QStringLiteral("getFilters"))).object();
        QCOMPARE(filters.value("LPF").toDouble(), 30.0);
        ui()->signal()->setHpf(1);
        ui()->signal()->setLpf(40);
    }

    void spectrumPeaksAtTheGeneratorFrequency()
    {
        show(QStringLiteral("Spectrum"));
        QTRY_VERIFY_WITH_TIMEOUT(ui()->spectrum()->hasSpectrum(), 10000);
        QTest::qWait(300);
        const double step = ui()->spectrum()->spectra()->frequencyStep();
        QVERIFY(qAbs(ui()->spectrum()->peakFrequency() - GeneratorHz) <= step);
        // The highest drawn point of the plot sits over 10 Hz on its frequency axis.
        QQuickItem* plot = item("spectrumPlot");
        QVERIFY(plot);
        const QImage image = grabItem(plot);
        // Spectra are drawn in colour, the grid in grey.
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (QColor(image.pixel(x, y)).hsvSaturation() > 120 && QColor(image.pixel(x, y)).value() > 120) {
                    const double hz = double(x) / image.width() * ui()->spectrum()->maxFrequency();
                    QVERIFY2(qAbs(hz - GeneratorHz) < 1.5, qPrintable(QStringLiteral("peak drawn at %1 Hz").arg(hz)));
                    saveScreenshot(QStringLiteral("spectrum"));
                    return;
                }
            }
        }
        QFAIL("no spectrum line drawn");
    }

    void gaugesShowIndicesWithinRange()
    {
        show(QStringLiteral("Indices"));
        QTRY_VERIFY_WITH_TIMEOUT(ui()->indices()->meditation() >= 0 && ui()->indices()->concentration() >= 0, 15000);
        for (int i = 0; i < 5; ++i) {
            QVERIFY(ui()->indices()->meditation() <= 100 && ui()->indices()->concentration() <= 100);
            QTest::qWait(100);
        }
        for (const char* name : { "meditationGauge", "concentrationGauge", "indexHistoryPlot" }) {
            QQuickItem* shown = item(name);
            QVERIFY2(shown && shown->isVisible(), name);
        }
        saveScreenshot(QStringLiteral("indices"));
    }

    // Pressed as a person does: the record button, a typed annotation, a key, the stop button.
    void recordingRunsAndAnnotationsLandInTheFile()
    {
        show(QStringLiteral("Recording"));
        QQuickItem* record = item("recordButton");
        QVERIFY(record);
        click(record);
        QTRY_VERIFY_WITH_TIMEOUT(ui()->recording()->isRecording(), 3000);
        QTRY_VERIFY_WITH_TIMEOUT(ui()->recording()->duration() >= 1.5, 5000);
        QCOMPARE(item("durationLabel")->property("text").toString(), ui()->recording()->durationText());

        QQuickItem* field = item("annotationField");
        QVERIFY(field);
        field->forceActiveFocus();
        typeText(QStringLiteral("eyes closed"));
        QTest::keyClick(window(), Qt::Key_Return);
        QTRY_COMPARE(ui()->recording()->annotations()->rowCount(), 1);
        window()->contentItem()->forceActiveFocus();
        QTest::keyClick(window(), Qt::Key_3);
        QTRY_COMPARE(ui()->recording()->annotations()->rowCount(), 2);
        saveScreenshot(QStringLiteral("recording"));

        // Closing the window while recording asks first; cancelling keeps both.
        QVERIFY(!window()->close());
        QObject* question = window()->findChild<QObject*>(QStringLiteral("closeDialog"));
        QVERIFY(question);
        QTRY_VERIFY(question->property("opened").toBool());
        QVERIFY(window()->isVisible() && ui()->recording()->isRecording());
        QMetaObject::invokeMethod(question, "reject");
        QTRY_VERIFY(!question->property("visible").toBool());

        QQuickItem* stop = item("stopButton");
        click(stop);
        QTRY_VERIFY(!ui()->recording()->isRecording());
        QString edf;
        for (const QString& file : ui()->recording()->lastFiles()) {
            if (file.endsWith(QLatin1String(".edf")) && !file.endsWith(QLatin1String(".raw.edf")))
                edf = file;
        }
        EDFReader reader(edf);
        QVERIFY2(reader.open(), qPrintable(edf));
        QList<edf_annotation_struct> annotations;
        reader.getAnnotationList(annotations);
        QStringList texts;
        for (const edf_annotation_struct& annotation : annotations)
            texts.append(QString::fromUtf8(annotation.annotation));
        QVERIFY2(texts.contains(QStringLiteral("eyes closed")), qPrintable(texts.join('|')));
        QVERIFY2(texts.contains(ui()->recording()->keyAnnotations().at(2)), qPrintable(texts.join('|')));
        m_recorded = edf;
    }

    // The simulated headset and the file player (on the file just recorded) fill the same screens.
    void otherDevicesFeedTheScreens_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("simulated headset") << QStringLiteral("simulated");
        QTest::newRow("file player") << QStringLiteral("player");
    }

    void otherDevicesFeedTheScreens()
    {
        QFETCH(QString, kind);
        DevicesController* devices = ui()->devices();
        if (kind == QLatin1String("player")) {
            QVERIFY(!m_recorded.isEmpty());
            devices->setFilePlayerPath(QUrl::fromLocalFile(m_recorded).toString());
        }
        devices->startSearch();
        DeviceListModel* found = devices->devices();
        const auto rowOfKind = [found, &kind] {
            for (int row = 0; row < found->rowCount(); ++row) {
                if (found->kindOf(found->deviceAt(row).name) == kind)
                    return row;
            }
            return -1;
        };
        QTRY_VERIFY_WITH_TIMEOUT(rowOfKind() >= 0, 5000);
        const int row = rowOfKind();
        QVERIFY(devices->startDevice(row));
        QTRY_VERIFY_WITH_TIMEOUT(devices->isDeviceStarted(), 5000);
        QCOMPARE(devices->currentDeviceName(), devices->devices()->deviceAt(row).name);
        show(QStringLiteral("Signal"));
        const qint64 before = ui()->signal()->samplesShown();
        QTRY_VERIFY_WITH_TIMEOUT(ui()->signal()->samplesShown() > before + 100, 5000);
        QCOMPARE(ui()->signal()->traces()->channelCount(), ui()->channels()->rowCount());
        const QImage picture = grabItem(item("tracePlot"));
        QVERIFY(countDifferent(picture, picture.pixel(picture.width() - 2, 1)) > picture.width());
        QCOMPARE(item("statusDevice")->property("text").toString().contains(devices->currentDeviceName()), true);
    }

    // Every property of every settings class through the generated page, as a person enters it:
    // a valid value, a refused one (its reason beside the field, the value kept), the default
    // again; after each step the API's getSettings says what the page says.
    void settingsPageWalksEveryProperty()
    {
        show(QStringLiteral("Settings"));
        SettingsListModel* model = ui()->settings();
        QQuickItem* list = item("settingsList");
        QVERIFY(list && list->property("count").toInt() == model->rowCount());
        for (int row = 0; row < model->rowCount(); ++row) {
            const QString name = text(row, SettingsListModel::NameRole);
            const QString editor = text(row, SettingsListModel::EditorRole);
            const QString before = text(row, SettingsListModel::ValueRole);
            QQuickItem* shown = reveal(row);
            QVERIFY2(shown, qPrintable(name));
            QCOMPARE(apiValue(name), before);
            if (editor == QLatin1String("readonly")) {
                QVERIFY2(!model->setValue(row, before + QLatin1Char('1')), qPrintable(name));
                continue;
            }
            enter(shown, editor, row, validValue(row));
            QVERIFY2(text(row, SettingsListModel::ValueRole) != before, qPrintable(name));
            QVERIFY2(text(row, SettingsListModel::ErrorRole).isEmpty(), qPrintable(name));
            const QString valid = text(row, SettingsListModel::ValueRole);
            QCOMPARE(apiValue(name), valid);

            const QString invalid = invalidValue(row);
            if (!invalid.isNull()) {
                if (editor == QLatin1String("bool") || editor == QLatin1String("enum"))
                    QVERIFY(!model->setValue(row, invalid)); // their editors cannot produce one
                else
                    enter(shown, editor, row, invalid);
                const QQuickItem* reason = findItem(shown, QStringLiteral("settingError"));
                QVERIFY2(!reason->property("text").toString().isEmpty(), qPrintable(name));
                QCOMPARE(reason->isVisible(), shown->isVisible());
                QCOMPARE(text(row, SettingsListModel::ValueRole), valid);
                QCOMPARE(apiValue(name), valid);
            }
            if (model->data(model->index(row), SettingsListModel::CanRestoreRole).toBool()) {
                QMetaObject::invokeMethod(findItem(shown, QStringLiteral("restoreDefault")), "clicked");
                QVERIFY2(text(row, SettingsListModel::ErrorRole).isEmpty(), qPrintable(name));
                QCOMPARE(apiValue(name), text(row, SettingsListModel::ValueRole));
                QVERIFY(findItem(shown, QStringLiteral("settingError"))->property("text").toString().isEmpty());
            }
            QVERIFY(model->setValue(row, before)); // the run goes on with its own settings
        }
        saveScreenshot(QStringLiteral("settings"));
    }

    // Switching the generator's signal type shows and hides its properties at once.
    void settingsVisibilityFollowsSignalType()
    {
        SettingsListModel* model = ui()->settings();
        const int type = model->rowOf(QStringLiteral("SignalType"));
        const QStringList types = model->data(model->index(type), SettingsListModel::ChoiceValuesRole).toStringList();
        const QString before = text(type, SettingsListModel::ValueRole);
        QSet<QString> seen;
        for (const QString& choice : types) {
            QVERIFY(model->setValue(type, choice));
            QStringList visible;
            for (int row = 0; row < model->rowCount(); ++row) {
                const bool shownNow = model->data(model->index(row), SettingsListModel::ShownRole).toBool();
                if (shownNow)
                    visible.append(text(row, SettingsListModel::NameRole));
                if (text(row, SettingsListModel::NameRole).startsWith(QLatin1String("Generator")))
                    QCOMPARE(reveal(row)->isVisible(), shownNow);
            }
            seen.insert(visible.join(QLatin1Char(',')));
        }
        QVERIFY2(seen.size() > 1, "no property depends on the signal type");
        QVERIFY(model->setValue(type, before));
    }

    // With an application object the API sees the screens and opens links in the browser.
    void screenInfoAndOpenLinkThroughTheApi()
    {
        const QJsonArray screens = QJsonDocument::fromJson(httpGet(QStringLiteral("screenInfo"))).object().value("screens").toArray();
        QVERIFY(!screens.isEmpty());
        QCOMPARE(screens.first().toObject().value("width").toInt(), 1600);
        QVERIFY(screens.first().toObject().value("dpi").toDouble() > 0);
        const QJsonObject opened = QJsonDocument::fromJson(httpGet(QStringLiteral("openLink?path=https://example.org/x"))).object();
        QVERIFY(opened.value("result").toBool());
        QFile log(homePath(QStringLiteral("opened.txt")));
        QTRY_VERIFY(log.exists() && log.size() > 0);
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains("https://example.org/x"));
    }
};

int main(int argc, char* argv[])
{
    return WindowHarness::run<WindowTest>(argc, argv);
}

#include "tst_window.moc"
