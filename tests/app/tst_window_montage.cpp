// The Montage and Algorithms screens in the real window on the generator, checked through the
// command interface and the files they write.
#include "app/OrvexModel.h"
#include "core/CortexCore.h"
#include "dsp/CustomBCIAlgorithm.h"
#include "dsp/FormulaExpression.h"
#include "settings/KxSettings.h"
#include "settings/OrvexSettings.h"
#include "support/WindowHarness.h"

#include <QJsonArray>
#include <QXmlStreamReader>

using namespace WindowHarness;

namespace {
QStringList channelNames()
{
    QStringList names;
    for (const QJsonValue& name : apiCall(QStringLiteral("currentDeviceInfo")).value("currentChannelsNames").toArray())
        names.append(name.toString());
    return names;
}

// The largest absolute sample of each channel the API holds.
QList<double> peaks()
{
    QList<double> result;
    for (const QJsonValue& channel : apiCall(QStringLiteral("filteredData")).value("data").toArray()) {
        double peak = 0;
        for (const QJsonValue& sample : channel.toArray())
            peak = qMax(peak, qAbs(sample.toDouble()));
        result.append(peak);
    }
    return result;
}

QStringList controlNames()
{
    QStringList names;
    for (const QJsonValue& control : apiCall(QStringLiteral("controlOptions")).value("controls").toArray())
        names.append(control.toObject().value("name").toString());
    return names;
}
}

class MontageWindowTest : public WindowTestBase
{
    Q_OBJECT
public:
    using WindowTestBase::WindowTestBase;

private:
    MontageController* montage() const { return ui()->montage(); }

    void typeInto(const char* name, const QString& text)
    {
        QQuickItem* field = item(name);
        QVERIFY2(field && field->isVisible(), name);
        click(field);
        QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
        typeText(text);
        QTest::keyClick(window(), Qt::Key_Return);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QTRY_VERIFY_WITH_TIMEOUT(ui()->devices()->isDeviceStarted(), 10000);
        show(QStringLiteral("Montage"));
        QTRY_VERIFY(item("montage_name_1"));
    }

    void editsActOnTheEngine()
    {
        typeInto("montage_name_0", QStringLiteral("Frontal"));
        QTRY_COMPARE(channelNames().value(0), QStringLiteral("Frontal"));
        typeInto("montage_scale_0", QStringLiteral("2"));
        // The same sine on every input: the scaled channel peaks twice as high as the next.
        QTest::qWait(1500);
        const QList<double> peak = peaks();
        QVERIFY(peak.size() > 1 && peak[1] > 20);
        QVERIFY2(qAbs(peak[0] / peak[1] - 2) < 0.1, qPrintable(QString::number(peak[0] / peak[1])));

        typeInto("montage_offset_1", QStringLiteral("abc"));
        QTRY_VERIFY(item("montageError")->isVisible());
        QCOMPARE(montage()->error(), QStringLiteral("'abc' is not a number"));
        saveScreenshot(QStringLiteral("montage"));
    }

    void refusedEdits_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty name") << "name" << " " << "A channel needs a name";
        QTest::newRow("taken name") << "name" << "frontal" << "Another channel is already called Frontal";
        QTest::newRow("above half the rate") << "lowPass" << "125" << "A cut-off must stay below 125 Hz (half the sampling rate)";
        QTest::newRow("high-pass above the common low-pass")
            << "highPass" << "45" << "The high-pass cut-off (45 Hz) must stay below the low-pass one (40 Hz)";
        QTest::newRow("zero scale") << "scale" << "0" << "The scale cannot be 0";
        QTest::newRow("missing input") << "input" << "99" << "The device has no input 99";
        QTest::newRow("own reference") << "reference" << "1" << "A channel cannot be its own reference";
    }

    void refusedEdits()
    {
        QFETCH(QString, field);
        QFETCH(QString, text);
        QFETCH(QString, error);
        const QList<MontageChannel> before = startup()->model()->engine()->getCurrentMontage();
        QVERIFY(!montage()->setField(1, field, text));
        QCOMPARE(montage()->error(), error);
        QCOMPARE(startup()->model()->engine()->getCurrentMontage(), before);
    }

    void filesRoundTrip_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("xml") << "montage.xml";
        QTest::newRow("json") << "montage.json";
    }

    void filesRoundTrip()
    {
        QFETCH(QString, file);
        const QString path = homePath(file);
        QVERIFY(montage()->setField(2, QStringLiteral("type"), QStringLiteral("ECG")));
        QVERIFY(montage()->saveFile(path));
        QFile saved(path);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QString firstName, firstScale;
        if (file.endsWith(".json")) {
            const QJsonObject first = QJsonDocument::fromJson(saved.readAll())["chan_list"][0].toObject();
            firstName = first.value("name").toString();
            firstScale = QString::number(first.value("scale").toDouble());
        } else {
            QXmlStreamReader xml(&saved);
            while (xml.readNextStartElement() && xml.name() != QLatin1String("Channel"))
                ;
            firstName = xml.attributes().value("name").toString();
            firstScale = xml.attributes().value("scale").toString();
        }
        QCOMPARE(firstName, QStringLiteral("Frontal"));
        QCOMPARE(firstScale, QStringLiteral("2"));

        QVERIFY(montage()->restoreDefault());
        QVERIFY(channelNames().value(0) != QStringLiteral("Frontal"));
        QVERIFY(montage()->loadFile(QUrl::fromLocalFile(path).toString()));
        QCOMPARE(channelNames().value(0), QStringLiteral("Frontal"));
        // Only JSON keeps the channel type.
        const QModelIndex third = montage()->channels()->index(2);
        QCOMPARE(third.data(MontageChannelListModel::TypeRole).toString(), file.endsWith(".json") ? "ECG" : "EEG");
    }

    void deviceGetsItsFileWhenItStarts()
    {
        QVERIFY(montage()->useFileForDevice());
        QVERIFY(montage()->restoreDefault());
        CortexCore* engine = startup()->model()->engine();
        const DeviceInfo generator = engine->currentDeviceInfo();
        engine->stopDevice();
        QVERIFY(engine->startDevice(generator));
        QTRY_COMPARE_WITH_TIMEOUT(channelNames().value(0), QStringLiteral("Frontal"), 5000);
        montage()->forgetDeviceMontage();
        QCOMPARE(montage()->deviceMontage(), QString());
    }

    void refusedWhileRecording()
    {
        QVERIFY(ui()->recording()->start());
        QTRY_VERIFY(item("montageRefusal")->isVisible());
        const QString reason = QStringLiteral("Cannot change montage while recording is on");
        QCOMPARE(item("montageRefusal")->property("text").toString(), reason);
        QVERIFY(!item("montage_name_0")->isEnabled());
        QVERIFY(!montage()->loadFile(homePath("montage.xml")));
        QCOMPARE(montage()->error(), reason);
        ui()->recording()->stop();
        QTRY_VERIFY(!item("montageRefusal")->isVisible());
    }

    void algorithmsThroughTheForm()
    {
        show(QStringLiteral("Algorithms"));
        QQuickItem* screen = item("algorithmsScreen");
        QMetaObject::invokeMethod(screen, "startNew", Q_ARG(QVariant, QStringLiteral("ratio")));
        typeInto("algorithmName", QStringLiteral("theta_beta"));
        click(item("algorithmSaveButton"));
        QTRY_VERIFY(item("algorithm_theta_beta"));

        QMetaObject::invokeMethod(screen, "startNew", Q_ARG(QVariant, QStringLiteral("formula")));
        typeInto("algorithmName", QStringLiteral("focus"));
        const QString broken = QStringLiteral("theta_beta * (");
        typeInto("algorithmFormula", broken);
        QTRY_VERIFY(item("algorithmError_formula")->isVisible());
        QCOMPARE(item("algorithmError_formula")->property("text").toString(), FormulaExpression(broken).errorText());
        QVERIFY(!item("algorithm_focus"));
        typeInto("algorithmFormula", QStringLiteral("theta_beta * 10"));
        QTRY_VERIFY(item("algorithm_focus"));
        QVERIFY(!item("algorithmError_formula")->isVisible());

        QTRY_VERIFY_WITH_TIMEOUT(item("algorithmValue_focus")->property("text").toString() != "–", 5000);
        QVERIFY(!controlNames().contains("focus"));
        click(item("algorithmControl_focus"));
        click(item("algorithmControl_theta_beta"));
        QTRY_VERIFY(controlNames().contains("focus"));
        // The formula runs after what it reads: both values come from the same step.
        QJsonObject bci;
        QTRY_VERIFY((bci = apiCall(QStringLiteral("bci"))).value("theta_beta").toDouble() > 0);
        QCOMPARE(bci.value("focus").toDouble(), bci.value("theta_beta").toDouble() * 10);
        saveScreenshot(QStringLiteral("algorithms"));

        click(item("algorithmRemove_theta_beta"));
        QTRY_VERIFY(item("algorithmsError")->isVisible());
        QVERIFY(item("algorithm_theta_beta"));
        click(item("algorithmRemove_focus"));
        QTRY_VERIFY(!item("algorithm_focus"));
        QVERIFY(!controlNames().contains("focus"));
        QVERIFY(apiCall(QStringLiteral("bci")).contains("theta_beta"));
    }

    // What one run defines, the next run has: a second model on the same settings folder.
    void algorithmsPersist()
    {
        QTemporaryDir folder;
        const QString previous = KxSettings::storageFolder();
        KxSettings::setStorageFolder(folder.path());
        {
            OrvexModel first;
            AlgorithmListModel values;
            AlgorithmsController algorithms(&first, &values);
            QVERIFY(algorithms.save(-1, algorithms.fields(-1, QStringLiteral("share"))) == false); // no name yet
            QVariantMap fields = algorithms.fields(-1, QStringLiteral("share"));
            fields["name"] = QStringLiteral("alpha");
            fields["visibleToControl"] = true;
            QVERIFY(algorithms.save(-1, fields));
        }
        OrvexModel second;
        AlgorithmListModel values;
        AlgorithmsController algorithms(&second, &values);
        KxSettings::setStorageFolder(previous);
        QCOMPARE(algorithms.list()->rowCount(), 1);
        const QList<CustomBCIAlgorithm*> running = second.engine()->getCustomAlgoritms();
        QCOMPARE(running.size(), 1);
        QCOMPARE(running[0]->getName(), QStringLiteral("alpha"));
        QVERIFY(running[0]->visibleToControl());
    }
};

int main(int argc, char* argv[])
{
    return WindowHarness::run<MontageWindowTest>(argc, argv);
}

#include "tst_window_montage.moc"
