#include "settings/MetaDescription.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {
const QStringList SignalTypes = { "Sine", "Saw", "Random", "Meander", "DoubleSine", "ModulatedSine", "ECG" };
}

class TestSettingsClasses : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    // Every declaration is usable: a category, a default within range, the notify convention.
    static void checkDeclarations(KxSettings& settings)
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

    // "Name=text" pairs, read back as text.
    static void checkValues(const KxSettings& settings, const QStringList& pairs)
    {
        for (const QString& pair : pairs)
            QCOMPARE(settings.getTextValue(pair.section('=', 0, 0)), pair.section('=', 1));
    }

    // "Name=text" pairs that must all be accepted (then read back as given) or all be refused
    // (then the value is left alone).
    static void checkTexts(KxSettings& settings, const QStringList& pairs, bool accepted)
    {
        settings.setAutoSave(false);
        for (const QString& pair : pairs) {
            const QString name = pair.section('=', 0, 0), text = pair.section('=', 1);
            const QString before = settings.getTextValue(name);
            QVERIFY2(settings.setTextValue(name, text) == accepted, qPrintable(pair));
            QCOMPARE(settings.getTextValue(name), accepted ? text : before);
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
        // type|default entry|value|min|max|step|precision|prefix|suffix|visibility bound
        QTest::addColumn<QString>("declaration");
        // Shown or not for each signal type, in the order of SignalTypes.
        QTest::addColumn<QString>("shownFor");
        QTest::newRow("SignalType") << "Enum|GeneratorVirtualDevice::GeneratorType::Random|Random|||||||" << "1111111";
        QTest::newRow("GeneratorECGbpm") << "float|60.0f|60|1|500|0.1|1||bpm|SignalType:ECG" << "0000001";
        QTest::newRow("GeneratorECGHRV") << "float|0.1f|0.1|0|2|0.01|1|||SignalType:ECG" << "0000001";
        QTest::newRow("GeneratorSamplingRate") << "int|125|125|10|2000|1|||Hz|" << "1111111";
        QTest::newRow("GeneratorBaseFrequency")
            << "float|10.0f|10|0|100|0.1|1||Hz|SignalType:!Random&&!ECG" << "1101110";
        QTest::newRow("GeneratorSecondFrequency")
            << "float|2.0f|2|0|100|0.1|1||Hz|SignalType:DoubleSine|ModulatedSine" << "0000110";
        QTest::newRow("GeneratorAmplitude") << "float|250.0f|250|1|10000|0.1|1|±|µV|" << "1111111";
        QTest::newRow("GeneratorFrequencyIncrement")
            << "float|0.0f|0|0|100|0.1|1||Hz|SignalType:!Random&&!ECG" << "1101110";
        QTest::newRow("GeneratorChannelNames") << "QString|\"O1,T3,Fp1,Fp2,T4,O2\"|O1,T3,Fp1,Fp2,T4,O2|||||||"
                                               << "1111111";
    }

    void generatorTable()
    {
        QFETCH(QString, declaration);
        QFETCH(QString, shownFor);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        VirtualDevicesSettings settings;
        settings.setAutoSave(false);
        QVERIFY(settings.getPropertyByName(name));
        const QVariantMap map = settings.getPropertyCapabilities(name);
        QStringList actual = { map.value("type").toString(), settings.getPropertyByName(name)->getDefaultText() };
        for (const char* key : { "value", "min", "max", "step", "precision", "prefix", "suffix", "visibleBound" })
            actual << map.value(key).toString();
        // The visibility bound may itself hold "|": it is everything after the ninth separator.
        QCOMPARE(actual, declaration.section('|', 0, 8).split('|') << declaration.section('|', 9));
        QCOMPARE(QStringList({ map.value("name").toString(), map.value("default").toString(),
                               map.value("category").toString(), map.value("readOnly").toString() }),
                 QStringList({ name, actual[2], "VirtualDevices", "false" }));
        QString shown;
        for (const QString& type : SignalTypes) {
            QVERIFY(settings.setTextValue("SignalType", type.toLower())); // names match in any case
            shown += settings.getPropertyCapabilities(name).value("hidden").toBool() ? '0' : '1';
        }
        QCOMPARE(shown, shownFor);
    }

    void generatorDeclarations()
    {
        VirtualDevicesSettings settings;
        checkDeclarations(settings);
        checkValues(settings, { "GeneratorEnabled=true", "EDFPath=" });
        const QVariantMap path = settings.getPropertyCapabilities("EDFPath");
        QCOMPARE(path.value("specialType").toString(), QStringLiteral("PickFile"));
        QCOMPARE(path.value("pickExtensions").toStringList(), QStringList({ "edf", "bdf" }));
        QCOMPARE(settings.getPropertyCapabilities("SignalType").value("enums").toStringList(), SignalTypes);
        // Declared with the marker that keeps the unit untranslated; shown without it.
        QCOMPARE(settings.getPropertyByName("GeneratorAmplitude")->getSuffix(), QStringLiteral("!-µV"));
        QCOMPARE(settings.getPropertyByName("GeneratorAmplitude")->getPrefix(), QStringLiteral("!-±"));
    }

    void applicationDefaults()
    {
        OrvexSettings settings;
        checkDeclarations(settings);
        checkValues(settings, { "HPF=2", "LPF=40", "BSF=50", "BSF2=0", "HPFOrder=4", "LPFOrder=4", "UseFIR=true",
                                "StorageTime=10", "DataFolder=", "RecordRawEDF=false", "RecordOXD=true",
                                "APIEnabled=true", "APIPort=2336", "LoggingEnabled=false", "FavouriteDevice=", "StartFavouriteDevice=true", "ResumeRecordingAfterReconnect=true",
                                "MeditationChannels=O1,O2" });
        QCOMPARE(settings.getPropertyByName("MeditationChannels")->getCategory(), QStringLiteral("4.Meditation"));

        // An empty data folder stands for the standard one.
        settings.setAutoSave(false);
        QVERIFY(settings.resolvedDataFolder().endsWith(QStringLiteral("/OrvexPro/Records")));
        settings.setDataFolder(QStringLiteral("/data/eeg"));
        QCOMPARE(settings.resolvedDataFolder(), QStringLiteral("/data/eeg"));
    }

    void textsOutsideTheRangesAreRefused()
    {
        OrvexSettings settings;
        checkTexts(settings, { "HPF=100.5", "HPF=-1", "LPF=501", "HPFOrder=9", "LPFOrder=0", "StorageTime=0",
                               "StorageTime=3601", "APIPort=65536", "APIPort=0" }, false);
        checkTexts(settings, { "HPF=0", "LPF=500", "HPFOrder=8", "StorageTime=3600", "APIPort=65535" }, true);
        QVERIFY(settings.setTextValue("APIEnabled", "false"));
        QVERIFY(!settings.getPropertyByName("APIPort")->isVisibleNow());

        VirtualDevicesSettings devices;
        checkTexts(devices, { "SignalType=Sine", "GeneratorAmplitude=10000" }, true);
        checkTexts(devices, { "SignalType=Square", "GeneratorAmplitude=10000.5" }, false);
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
        for (const char* file : { "OrvexSettings.json", "VirtualDevicesSettings.json" })
            QVERIFY2(QFile::exists(QDir(m_folder.path()).filePath(file)), file);
        checkValues(OrvexSettings(), { "LPF=30.5", "FavouriteDevice=Headset 12" });
        checkValues(VirtualDevicesSettings(), { "SignalType=ECG" });
    }
};

QTEST_GUILESS_MAIN(TestSettingsClasses)
#include "tst_settingsclasses.moc"
