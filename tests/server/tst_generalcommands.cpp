#include "FakeServerContext.h"

#include "server/commands/Close.h"
#include "server/commands/GameManage.h"
#include "server/commands/GetAllSettings.h"
#include "server/commands/GetSettings.h"
#include "server/commands/OpenLink.h"
#include "server/commands/ScreenInfo.h"
#include "server/commands/SetSettings.h"
#include "server/commands/Version.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QScreen>
#include <QVersionNumber>
#include <QtTest>

#include <memory>

namespace {
// The screen test needs a GUI application; without a display the offscreen platform serves.
const bool s_platformChosen = [] {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return true;
}();

QStringList capabilityNames(const QJsonArray& capabilities)
{
    QStringList names;
    for (const QJsonValue& capability : capabilities)
        names << capability["name"].toString();
    return names;
}
}

// Settings, version, screens and the application-level commands.
class TestGeneralCommands : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeServerContext> m_context;

    template <typename T>
    QJsonObject run(QMap<QString, QString> args = {}, bool* ok = nullptr)
    {
        T command(m_context.get());
        QJsonObject response;
        const bool result = command.processCommand(ReferrerHttp, response, args);
        if (ok)
            *ok = result;
        return response;
    }

private Q_SLOTS:
    void init() { m_context = std::make_unique<FakeServerContext>(); }
    void cleanup() { m_context.reset(); }

    void setAndGetSettings_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("error");
        QTest::newRow("float") << "" << "LPF" << "33.5" << "";
        QTest::newRow("key ignores case") << "" << "storagetime" << "120" << "";
        QTest::newRow("text") << "" << "MeditationChannels" << "O1,Fp1" << "";
        QTest::newRow("bool") << "" << "RecordRawEDF" << "true" << "";
        QTest::newRow("virtual devices") << "virtualdevices" << "GeneratorAmplitude" << "100" << "";
        QTest::newRow("enum by key") << "virtualdevices" << "SignalType" << "ECG" << "";
        QTest::newRow("above maximum") << "" << "LPF" << "600" << "Value '600' refused for 'LPF': ";
        QTest::newRow("not a number") << "" << "StorageTime" << "soon" << "Value 'soon' refused for 'StorageTime': ";
        QTest::newRow("unknown key") << "" << "NoSuchKey" << "1" << "Unknown setting 'NoSuchKey'";
        QTest::newRow("virtual key in app settings") << "" << "GeneratorAmplitude" << "100"
                                                     << "Unknown setting 'GeneratorAmplitude'";
    }

    void setAndGetSettings()
    {
        QFETCH(QString, type);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, error);
        KxSettings* settings = type.isEmpty() ? static_cast<KxSettings*>(m_context->getSettings())
                                              : m_context->getVirtualDevicesSettings();
        KxSettings* other = type.isEmpty() ? static_cast<KxSettings*>(m_context->getVirtualDevicesSettings())
                                           : m_context->getSettings();
        const QJsonArray otherBefore = other->getAllCapabilitiesJson();
        const QString before = settings->getTextValue(key);

        QMap<QString, QString> args { { "key", key }, { "value", value } };
        if (!type.isEmpty())
            args.insert("type", type);
        bool ok = false;
        const QJsonObject reply = run<SetSettings>(args, &ok);
        QCOMPARE(ok, error.isEmpty());
        if (error.isEmpty())
            QVERIFY2(!reply.contains("error"), qPrintable(reply.value("error").toString()));
        else
            QVERIFY2(reply.value("error").toString().startsWith(error), qPrintable(reply.value("error").toString()));
        QCOMPARE(other->getAllCapabilitiesJson(), otherBefore);

        args.remove("value");
        const QJsonObject got = run<GetSettings>(args, &ok);
        if (!error.startsWith("Unknown")) {
            QVERIFY(ok);
            // Compared by meaning: "33.5" may come back as "33.5" or "33.50".
            const QString expected = error.isEmpty() ? value : before;
            const QString text = got.value("value").toString();
            bool numeric = false;
            const double number = text.toDouble(&numeric);
            if (numeric)
                QCOMPARE(number, expected.toDouble());
            else
                QCOMPARE(text, expected);
        } else {
            QCOMPARE(got.value("error").toString(), error);
        }
    }

    void setSettingsArgumentsAndBody()
    {
        bool ok = true;
        QCOMPARE(run<SetSettings>({ { "key", "LPF" } }, &ok).value("error").toString(),
                 QString("Provide 'key' and 'value'"));
        QVERIFY(!ok);
        QCOMPARE(run<SetSettings>({ { "value", "3" } }, &ok).value("error").toString(),
                 QString("Provide 'key' and 'value'"));
        QCOMPARE(run<GetSettings>({}, &ok).value("error").toString(), QString("Provide 'key'"));

        SetSettings command(m_context.get());
        QJsonObject response;
        QMap<QString, QString> args { { "key", "FavouriteDevice" } };
        QByteArray body("Headset \xc3\xa9 7");
        QVERIFY(command.processCommandWithBody(ReferrerHttp, response, args, body));
        QCOMPARE(m_context->getSettings()->getFavouriteDevice(), QString::fromUtf8("Headset \xc3\xa9 7"));
    }

    void allSettings()
    {
        const QJsonObject reply = run<GetAllSettings>();
        const QStringList app = capabilityNames(reply.value("settings").toArray());
        const QStringList virtualDevices = capabilityNames(reply.value("virtualDeviceSettings").toArray());
        QCOMPARE(app.size(), m_context->getSettings()->metaDescriptor().size());
        QVERIFY(app.contains("APIPort") && app.contains("HPF") && !app.contains("GeneratorAmplitude"));
        QVERIFY(virtualDevices.contains("GeneratorAmplitude") && !virtualDevices.contains("HPF"));
        // Hidden properties are listed too.
        QVERIFY(app.contains("APIPort"));
        m_context->getSettings()->setAPIEnabled(false);
        QCOMPARE(capabilityNames(run<GetAllSettings>().value("settings").toArray()), app);
    }

    void version()
    {
        QJsonObject reply = run<Version>();
        QCOMPARE(reply.value("version").toString(), QString(ORVEX_VERSION));
        QVERIFY(QVersionNumber::fromString(reply.value("version").toString()).segmentCount() >= 2);
        QCOMPARE(reply.value("locale").toString(), QLocale().name());
    }

    void screens()
    {
        QVERIFY(qobject_cast<QGuiApplication*>(QCoreApplication::instance()));
        const QJsonArray screens = run<ScreenInfo>().value("screens").toArray();
        QCOMPARE(screens.size(), QGuiApplication::screens().size());
        QVERIFY(!screens.isEmpty());
        const QJsonObject first = screens.first().toObject();
        const QRect geometry = QGuiApplication::primaryScreen()->geometry();
        QCOMPARE(first.value("width").toInt(), geometry.width());
        QCOMPARE(first.value("height").toInt(), geometry.height());
        QCOMPARE(first.value("x").toInt(), geometry.x());
        QVERIFY(first.value("pixelRatio").toDouble() > 0);
        QCOMPARE(first.value("dpmm").toDouble(), first.value("dpi").toDouble() / 25.4);
    }

    void close()
    {
        bool ok = false;
        run<Close>({}, &ok);
        QVERIFY(ok);
        QCOMPARE(m_context->closeRequests, 1);
    }

    void openLink_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("opened");
        QTest::newRow("http") << "http://example.org/page?a=1" << true;
        QTest::newRow("https, any case") << "HTTPS://Example.org" << true;
        QTest::newRow("file") << "file:///etc/passwd" << false;
        QTest::newRow("javascript") << "javascript:alert(1)" << false;
        QTest::newRow("relative") << "index.html" << false;
        QTest::newRow("no host") << "http://" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("other scheme") << "ftp://example.org" << false;
    }

    void openLink()
    {
        QFETCH(QString, path);
        QFETCH(bool, opened);
        bool ok = !opened;
        const QJsonObject reply = run<OpenLink>({ { "path", path } }, &ok);
        QCOMPARE(ok, opened);
        QCOMPARE(m_context->openedLinks.size(), opened ? 1 : 0);
        if (opened)
            QCOMPARE(m_context->openedLinks.first(), QUrl(path));
        else
            QVERIFY(!reply.value("error").toString().isEmpty());
    }

    void gameManage()
    {
        QJsonObject reply = run<GameManage>();
        QCOMPARE(reply.value("screens").toArray(), QJsonArray({ "bars", "balloon" }));
        QCOMPARE(reply.value("current").toString(), QString("bars"));

        QSignalSpy changed(m_context.get(), &DataServerContext::currentFeedbackScreenChanged);
        bool ok = false;
        reply = run<GameManage>({ { "screen", "balloon" } }, &ok);
        QVERIFY(ok);
        QCOMPARE(reply.value("current").toString(), QString("balloon"));
        QCOMPARE(changed.size(), 1);

        reply = run<GameManage>({ { "screen", "chess" } }, &ok);
        QVERIFY(!ok);
        QCOMPARE(reply.value("error").toString(), QString("Unknown screen 'chess'"));
        QCOMPARE(m_context->getCurrentFeedbackScreen(), QString("balloon"));
    }
};

QTEST_MAIN(TestGeneralCommands)
#include "tst_generalcommands.moc"
