#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestSettingsClasses : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    // Every declaration is usable: a category, a default within range, the notify convention.
    void checkDeclarations(KxSettings& settings)
    {
        QVERIFY(!settings.metaDescriptor().isEmpty());
        for (MetaDescription* description : settings.metaDescriptor()) {
            const QString name = description->getName();
            QVERIFY2(!description->getCategory().isEmpty(), qPrintable(name));
            QVERIFY2(description->isEditable(), qPrintable(name));
            QVERIFY2(description->hasDefault(), qPrintable(name));
            QVERIFY2(description->setDefault(), qPrintable(name));
            QCOMPARE(QString::fromLatin1(description->getProperty().notifySignal().name()), name + "Changed");
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        KxSettings::setStorageFolder(m_folder.path());
    }

    void generatorTable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("defaultEntry");
        QTest::addColumn<QString>("value");
        // min, max, step, precision, prefix, suffix, visibleBound
        QTest::addColumn<QStringList>("limits");
        const QString hz = QStringLiteral("Hz");
        QTest::newRow("SignalType") << "SignalType" << "Enum" << "GeneratorVirtualDevice::GeneratorType::Random"
                                    << "Random" << QStringList({"", "", "", "", "", "", ""});
        QTest::newRow("GeneratorECGbpm") << "GeneratorECGbpm" << "float" << "60.0f" << "60"
                                         << QStringList({"1", "500", "0.1", "1", "", "bpm", "SignalType:ECG"});
        QTest::newRow("GeneratorECGHRV") << "GeneratorECGHRV" << "float" << "0.1f" << "0.1"
                                         << QStringList({"0", "2", "0.01", "1", "", "", "SignalType:ECG"});
        QTest::newRow("GeneratorSamplingRate") << "GeneratorSamplingRate" << "int" << "125" << "125"
                                               << QStringList({"10", "2000", "1", "", "", hz, ""});
        QTest::newRow("GeneratorBaseFrequency")
            << "GeneratorBaseFrequency" << "float" << "10.0f" << "10"
            << QStringList({"0", "100", "0.1", "1", "", hz, "SignalType:!Random&&!ECG"});
        QTest::newRow("GeneratorSecondFrequency")
            << "GeneratorSecondFrequency" << "float" << "2.0f" << "2"
            << QStringList({"0", "100", "0.1", "1", "", hz, "SignalType:DoubleSine|ModulatedSine"});
        QTest::newRow("GeneratorAmplitude") << "GeneratorAmplitude" << "float" << "250.0f" << "250"
                                            << QStringList({"1", "10000", "0.1", "1", "±", "µV", ""});
        QTest::newRow("GeneratorFrequencyIncrement")
            << "GeneratorFrequencyIncrement" << "float" << "0.0f" << "0"
            << QStringList({"0", "100", "0.1", "1", "", hz, "SignalType:!Random&&!ECG"});
        QTest::newRow("GeneratorChannelNames") << "GeneratorChannelNames" << "QString"
                                               << "\"O1,T3,Fp1,Fp2,T4,O2\"" << "O1,T3,Fp1,Fp2,T4,O2"
                                               << QStringList({"", "", "", "", "", "", ""});
    }

    void generatorTable()
    {
        QFETCH(QString, name);
        QFETCH(QString, type);
        QFETCH(QString, defaultEntry);
        QFETCH(QString, value);
        QFETCH(QStringList, limits);
        VirtualDevicesSettings settings;
        QVERIFY(settings.getPropertyByName(name));
        QCOMPARE(settings.getPropertyByName(name)->getDefaultText(), defaultEntry);
        const QVariantMap map = settings.getPropertyCapabilities(name);
        QCOMPARE(map.value("name").toString(), name);
        QCOMPARE(map.value("type").toString(), type);
        QCOMPARE(map.value("value").toString(), value);
        QCOMPARE(map.value("default").toString(), value);
        QCOMPARE(map.value("category").toString(), QStringLiteral("VirtualDevices"));
        QCOMPARE(map.value("readOnly").toString(), QStringLiteral("false"));
        const QStringList keys = {"min", "max", "step", "precision", "prefix", "suffix", "visibleBound"};
        for (int i = 0; i < keys.size(); ++i)
            QCOMPARE(map.value(keys[i]).toString(), limits[i]);
        QCOMPARE(settings.getPropertyByName("GeneratorAmplitude")->getSuffix(), QStringLiteral("!-µV"));
        QCOMPARE(settings.getPropertyByName("GeneratorAmplitude")->getPrefix(), QStringLiteral("!-±"));
    }

    void generatorDeclarations()
    {
        VirtualDevicesSettings settings;
        checkDeclarations(settings);
        QCOMPARE(settings.getGeneratorEnabled(), true);
        QCOMPARE(settings.getEDFPath(), QString());
        const QVariantMap path = settings.getPropertyCapabilities("EDFPath");
        QCOMPARE(path.value("specialType").toString(), QStringLiteral("PickFile"));
        QCOMPARE(path.value("pickExtensions").toStringList(), QStringList({"edf", "bdf"}));
        QCOMPARE(settings.getPropertyCapabilities("SignalType").value("enums").toStringList(),
                 QStringList({"Sine", "Saw", "Random", "Meander", "DoubleSine", "ModulatedSine", "ECG"}));
    }

    void visibilityFollowsSignalType_data()
    {
        QTest::addColumn<QString>("type");
        // Shown: GeneratorECGbpm, GeneratorECGHRV, GeneratorBaseFrequency, GeneratorSecondFrequency,
        // GeneratorFrequencyIncrement, GeneratorAmplitude
        QTest::addColumn<QString>("shown");
        QTest::newRow("Sine") << "Sine" << "001011";
        QTest::newRow("Saw") << "Saw" << "001011";
        QTest::newRow("Random") << "Random" << "000001";
        QTest::newRow("Meander") << "Meander" << "001011";
        QTest::newRow("DoubleSine") << "DoubleSine" << "001111";
        QTest::newRow("ModulatedSine") << "modulatedsine" << "001111";
        QTest::newRow("ECG") << "ECG" << "110001";
    }

    void visibilityFollowsSignalType()
    {
        QFETCH(QString, type);
        QFETCH(QString, shown);
        VirtualDevicesSettings settings;
        settings.setAutoSave(false);
        QVERIFY(settings.setTextValue("SignalType", type));
        const QStringList names = {"GeneratorECGbpm", "GeneratorECGHRV", "GeneratorBaseFrequency",
                                   "GeneratorSecondFrequency", "GeneratorFrequencyIncrement", "GeneratorAmplitude"};
        for (int i = 0; i < names.size(); ++i) {
            const bool expected = shown[i] == QLatin1Char('1');
            QVERIFY2(settings.getPropertyByName(names[i])->isVisibleNow() == expected, qPrintable(names[i]));
            QCOMPARE(settings.getPropertyCapabilities(names[i]).value("hidden").toString(),
                     expected ? QStringLiteral("false") : QStringLiteral("true"));
        }
    }

    void signalTypeByText()
    {
        VirtualDevicesSettings settings;
        settings.setAutoSave(false);
        QCOMPARE(settings.getSignalType(), GeneratorVirtualDevice::Random);
        QVERIFY(settings.setTextValue("SignalType", "Sine"));
        QCOMPARE(settings.getSignalType(), GeneratorVirtualDevice::Sine);
        QVERIFY(!settings.setTextValue("SignalType", "Square"));
        QCOMPARE(settings.getSignalType(), GeneratorVirtualDevice::Sine);
        QVERIFY(!settings.setTextValue("GeneratorAmplitude", "10000.5"));
        QVERIFY(settings.setTextValue("GeneratorAmplitude", "10000"));
        QCOMPARE(settings.getGeneratorAmplitude(), 10000.0f);
    }

    void applicationDefaults()
    {
        OrvexSettings settings;
        checkDeclarations(settings);
        QCOMPARE(settings.getHPF(), 2.0f);
        QCOMPARE(settings.getLPF(), 40.0f);
        QCOMPARE(settings.getBSF(), 50.0f);
        QCOMPARE(settings.getBSF2(), 0.0f);
        QCOMPARE(settings.getHPFOrder(), 4);
        QCOMPARE(settings.getLPFOrder(), 4);
        QCOMPARE(settings.getUseFIR(), true);
        QCOMPARE(settings.getStorageTime(), 10);
        QCOMPARE(settings.getDataFolder(), QString());
        QCOMPARE(settings.getRecordRawEDF(), false);
        QCOMPARE(settings.getRecordOXD(), true);
        QCOMPARE(settings.getAPIEnabled(), true);
        QCOMPARE(settings.getAPIPort(), 2336);
        QCOMPARE(settings.getLoggingEnabled(), false);
        QCOMPARE(settings.getFavouriteDevice(), QString());
        QCOMPARE(settings.getMeditationChannels(), QStringLiteral("O1,O2"));
        QCOMPARE(settings.getPropertyByName("MeditationChannels")->getCategory(), QStringLiteral("4.Meditation"));
    }

    void applicationRanges()
    {
        OrvexSettings settings;
        settings.setAutoSave(false);
        const QStringList refused = {"HPF=100.5", "HPF=-1", "LPF=501", "HPFOrder=9", "LPFOrder=0",
                                     "StorageTime=0", "StorageTime=3601", "APIPort=65536", "APIPort=0"};
        for (const QString& pair : refused)
            QVERIFY2(!settings.setTextValue(pair.section('=', 0, 0), pair.section('=', 1)), qPrintable(pair));
        const QStringList accepted = {"HPF=0", "LPF=500", "HPFOrder=8", "StorageTime=3600", "APIPort=65535"};
        for (const QString& pair : accepted)
            QVERIFY2(settings.setTextValue(pair.section('=', 0, 0), pair.section('=', 1)), qPrintable(pair));
        QCOMPARE(settings.getHPF(), 0.0f);
        QCOMPARE(settings.getAPIPort(), 65535);
        QVERIFY(settings.setTextValue("APIEnabled", "false"));
        QVERIFY(!settings.getPropertyByName("APIPort")->isVisibleNow());
    }

    void dataFolder()
    {
        OrvexSettings settings;
        settings.setAutoSave(false);
        QVERIFY(settings.resolvedDataFolder().endsWith(QStringLiteral("/OrvexPro/Records")));
        QCOMPARE(settings.resolvedDataFolder(), OrvexSettings::defaultDataFolder());
        settings.setDataFolder(QStringLiteral("/data/eeg"));
        QCOMPARE(settings.resolvedDataFolder(), QStringLiteral("/data/eeg"));
    }

    void changesSurviveARestart()
    {
        {
            OrvexSettings settings;
            settings.setLPF(30.5f);
            settings.setFavouriteDevice(QStringLiteral("Headset 12"));
            VirtualDevicesSettings devices;
            devices.setSignalType(GeneratorVirtualDevice::ECG);
        }
        QVERIFY(QFile::exists(QDir(m_folder.path()).filePath("OrvexSettings.json")));
        QVERIFY(QFile::exists(QDir(m_folder.path()).filePath("VirtualDevicesSettings.json")));
        OrvexSettings settings;
        QCOMPARE(settings.getLPF(), 30.5f);
        QCOMPARE(settings.getFavouriteDevice(), QStringLiteral("Headset 12"));
        VirtualDevicesSettings devices;
        QCOMPARE(devices.getSignalType(), GeneratorVirtualDevice::ECG);
    }
};

QTEST_GUILESS_MAIN(TestSettingsClasses)
#include "tst_settingsclasses.moc"
