// The screens' model objects over a real engine, without a window.
#include "app/OrvexModel.h"
#include "app/ui/UiModel.h"
#include "core/CortexCore.h"
#include "server/commands/GetSettings.h"
#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class TestUiModels : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("HOME", m_home.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", m_home.filePath(QStringLiteral("config")).toLocal8Bit());
    }

    // A new application setting either acts when it changes or says where it is read.
    void everySettingHasAnEffect()
    {
        const QMetaObject& meta = OrvexSettings::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QString name = QLatin1String(meta.property(i).name());
            QVERIFY2(OrvexModel::settingActions().contains(name) != OrvexModel::settingsReadWhereUsed().contains(name),
                     qPrintable(name));
        }
    }

    void qualityLevels_data()
    {
        QTest::addColumn<int>("quality");
        QTest::addColumn<QString>("level");
        QTest::newRow("no reading") << -1 << "unknown";
        QTest::newRow("flat") << 0 << "bad";
        QTest::newRow("just bad") << 19 << "bad";
        QTest::newRow("average from 20") << 20 << "average";
        QTest::newRow("just average") << 89 << "average";
        QTest::newRow("good from 90") << 90 << "good";
        QTest::newRow("perfect") << 100 << "good";
    }

    void qualityLevels()
    {
        QFETCH(int, quality);
        QFETCH(QString, level);
        QCOMPARE(ChannelListModel::levelName(ChannelListModel::levelOf(quality)), level);
    }

    void texts_data()
    {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("expected");
        QTest::newRow("seconds") << RecordingController::formatDuration(59.9) << "00:00:59";
        QTest::newRow("hours") << RecordingController::formatDuration(3 * 3600 + 61) << "03:01:01";
        QTest::newRow("microvolts") << SignalController::scaleText(50) << "50 µV";
        QTest::newRow("millivolts") << SignalController::scaleText(2000) << "2 mV";
        QTest::newRow("filter off") << SignalController::frequencyText(0) << "off";
        QTest::newRow("filter") << SignalController::frequencyText(0.5) << "0.5 Hz";
    }

    void texts()
    {
        QFETCH(QString, shown);
        QFETCH(QString, expected);
        QCOMPARE(shown, expected);
    }

    // The favourite starts when the search finds it; the views follow the device; choices that
    // are not offered are refused; a hidden channel leaves the traces.
    void favouriteStartsAndTheViewsFollow()
    {
        OrvexModel model;
        model.setPersistent(false);
        model.settings()->setFavouriteDevice(QStringLiteral("GeneratorDevice"));
        model.virtualDevicesSettings()->setGeneratorSamplingRate(250);
        UiModel* ui = model.createUiModel(QStringLiteral("OrvexPro test"));
        ui->devices()->startSearch();
        QTRY_VERIFY(ui->devices()->isDeviceStarted());
        QTRY_COMPARE(ui->status()->deviceName(), QStringLiteral("GeneratorDevice"));
        QCOMPARE(ui->status()->samplingRate(), 250.0);
        QVERIFY(ui->recording()->canRecord());
        QCOMPARE(ui->spectrum()->maxFrequencies().last(), 100.0); // nothing above half the rate
        QTRY_VERIFY(ui->signal()->samplesShown() > 50);

        ui->signal()->setTimeBase(3);
        QCOMPARE(ui->signal()->timeBase(), 10.0);
        ui->signal()->setNotch(55);
        QCOMPARE(ui->signal()->notch(), 50);
        ui->signal()->setNotch(60);
        QCOMPARE(ui->signal()->notch(), 60);
        ui->channels()->setVisible(1, false);
        QCOMPARE(ui->channels()->visibleChannels().size(), ui->channels()->rowCount() - 1);
        QVERIFY(!ui->recording()->annotate(QStringLiteral("not recording")));

        ui->devices()->stopDevice();
        QTRY_VERIFY(ui->status()->deviceName().isEmpty());
        QVERIFY(!ui->recording()->canRecord());
    }

    // Every property through the generated settings page: a valid value, a refused one (with a
    // reason, the value kept), the default back; the API's getSettings sees the same each time.
    void everySettingThroughTheSettingsPage()
    {
        OrvexModel model;
        model.setPersistent(false);
        UiModel* ui = model.createUiModel(QStringLiteral("OrvexPro test"));
        SettingsListModel* page = ui->settings();
        const auto role = [page](int row, int r) { return page->data(page->index(row), r); };
        const auto apiValue = [&model](const QString& name) {
            GetSettings command(&model);
            QJsonObject response;
            QMap<QString, QString> args { { QStringLiteral("key"), name } };
            if (model.virtualDevicesSettings()->getPropertyByName(name))
                args.insert(QStringLiteral("type"), QStringLiteral("virtualdevices"));
            command.processCommand(ReferrerHttp, response, args);
            return response.value(QStringLiteral("value")).toString();
        };
        QCOMPARE(page->rowCount(), int(model.allCapabilities().value("settings").toArray().size()
                                       + model.allCapabilities().value("virtualDeviceSettings").toArray().size()));
        int refusals = 0;
        for (int row = 0; row < page->rowCount(); ++row) {
            const QString name = role(row, SettingsListModel::NameRole).toString();
            const QString editor = role(row, SettingsListModel::EditorRole).toString();
            if (editor == QLatin1String("readonly") || name == QLatin1String("APIPort") || name == QLatin1String("EngineNodes"))
                continue;
            QString valid = role(row, SettingsListModel::DefaultRole).toString();
            if (editor == QLatin1String("number") && !role(row, SettingsListModel::MaximumRole).toString().isEmpty())
                valid = role(row, SettingsListModel::MaximumRole).toString();
            else if (editor == QLatin1String("bool"))
                valid = valid == QLatin1String("true") ? QStringLiteral("false") : QStringLiteral("true");
            else if (editor == QLatin1String("enum"))
                valid = role(row, SettingsListModel::ChoiceValuesRole).toStringList().last();
            QVERIFY2(page->setValue(row, valid), qPrintable(name + ": " + role(row, SettingsListModel::ErrorRole).toString()));
            QCOMPARE(apiValue(name), role(row, SettingsListModel::ValueRole).toString());
            if (editor == QLatin1String("number") || editor == QLatin1String("bool") || editor == QLatin1String("enum")) {
                const QString before = role(row, SettingsListModel::ValueRole).toString();
                QVERIFY2(!page->setValue(row, QStringLiteral("1e99x")), qPrintable(name));
                QVERIFY(!role(row, SettingsListModel::ErrorRole).toString().isEmpty());
                QCOMPARE(role(row, SettingsListModel::ValueRole).toString(), before);
                ++refusals;
            }
            if (role(row, SettingsListModel::CanRestoreRole).toBool()) {
                QVERIFY2(page->restoreDefault(row), qPrintable(name));
                QCOMPARE(apiValue(name), role(row, SettingsListModel::ValueRole).toString());
                QVERIFY(role(row, SettingsListModel::ErrorRole).toString().isEmpty());
            }
        }
        QVERIFY(refusals > 30);
        // Visibility follows its conditions at once: the ECG's rate shows only for the ECG.
        const int type = page->rowOf(QStringLiteral("SignalType"));
        const int heartRate = page->rowOf(QStringLiteral("GeneratorECGbpm"));
        QVERIFY(page->setValue(type, QStringLiteral("ECG")));
        QVERIFY(role(heartRate, SettingsListModel::ShownRole).toBool());
        QVERIFY(page->setValue(type, QStringLiteral("Sine")));
        QVERIFY(!role(heartRate, SettingsListModel::ShownRole).toBool());
    }

    // A disk that fills up during a recording: the recording screen and the status bar say why.
    void fullDiskIsShown()
    {
        const QString disk = m_home.filePath(QStringLiteral("small"));
        QDir().mkpath(disk);
        // A little more than the minute of a 6-channel 250 Hz recording that a start needs.
        if (QProcess::execute(QStringLiteral("mount"), { "-t", "tmpfs", "-o", "size=1400k", "tmpfs", disk }) != 0)
            QSKIP("a small tmpfs cannot be mounted here (needs root)");
        const auto unmount = qScopeGuard([&disk] { QProcess::execute(QStringLiteral("umount"), { disk }); });
        OrvexModel model;
        model.setPersistent(false);
        model.settings()->setDataFolder(disk);
        UiModel* ui = model.createUiModel(QStringLiteral("OrvexPro test"));
        ui->devices()->startWhenFound(QStringLiteral("GeneratorDevice"));
        ui->devices()->startSearch();
        QTRY_VERIFY(ui->recording()->canRecord());
        QSignalSpy status(&model, &OrvexModel::statusMessage);
        QVERIFY(ui->recording()->start());
        const QList<QList<float>> second(6, QList<float>(250, 10.0f));
        for (int s = 0; s < 120 && ui->recording()->isRecording(); ++s) {
            model.engine()->addDataChannelWise(second);
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY(!ui->recording()->isRecording());
        QVERIFY2(ui->recording()->lastError().startsWith(QStringLiteral("The recording stopped: writing ")),
                 qPrintable(ui->recording()->lastError()));
        QVERIFY(status.last().first().toString().startsWith(QStringLiteral("The recording stopped: ")));
    }
};

QTEST_MAIN(TestUiModels)
#include "tst_uimodels.moc"
