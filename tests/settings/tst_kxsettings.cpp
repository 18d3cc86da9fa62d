#include "services/GlobalConsole.h"
#include "settings/KxSettings.h"
#include "settings/MetaDescription.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class SampleSettings : public KxSettings
{
    Q_OBJECT
public:
    enum Mode { Off, Slow, Fast };
    Q_ENUM(Mode)

    Q_PROPERTY(Mode Speed MEMBER m_speed NOTIFY SpeedChanged)
    Q_CLASSINFO("SpeedCategory", "1.Common")
    Q_CLASSINFO("SpeedDefault", "SampleSettings::Mode::Fast")
    Q_CLASSINFO("SpeedEditable", "true")
    Q_PROPERTY(float Amplitude MEMBER m_amplitude NOTIFY AmplitudeChanged)
    Q_CLASSINFO("AmplitudeCategory", "2.Signal")
    Q_CLASSINFO("AmplitudeDefault", "250.0f")
    Q_CLASSINFO("AmplitudeMinimum", "1.0")
    Q_CLASSINFO("AmplitudeMaximum", "10000.0f")
    Q_CLASSINFO("AmplitudeStep", "0.1")
    Q_CLASSINFO("AmplitudePrecision", "1")
    Q_CLASSINFO("AmplitudePrefix", "!-±")
    Q_CLASSINFO("AmplitudeSuffix", "!-µV")
    Q_CLASSINFO("AmplitudeEditable", "true")
    Q_CLASSINFO("AmplitudeVisibleBound", "Speed:!Off")
    Q_PROPERTY(int Count MEMBER m_count NOTIFY CountChanged)
    Q_CLASSINFO("CountDefault", "7")
    Q_CLASSINFO("CountMaximum", "100")
    Q_CLASSINFO("CountNoDefault", "")
    Q_PROPERTY(bool Flag MEMBER m_flag NOTIFY FlagChanged)
    Q_CLASSINFO("FlagDefault", "false")
    Q_CLASSINFO("FlagEditable", "true")
    Q_CLASSINFO("FlagNotVisible", "")
    Q_PROPERTY(QString Path MEMBER m_path NOTIFY PathChanged)
    Q_CLASSINFO("PathDefault", "\"\"")
    Q_CLASSINFO("PathEditable", "true")
    Q_CLASSINFO("PathReadOnly", "")
    Q_CLASSINFO("PathSpecialType", "PickFile:*.edf *.bdf")

    explicit SampleSettings(QObject* parent = nullptr)
        : KxSettings(parent)
    {
        initialize();
    }

Q_SIGNALS:
    void SpeedChanged();
    void AmplitudeChanged();
    void CountChanged();
    void FlagChanged();
    void PathChanged();

public:
    Mode m_speed = Off;
    float m_amplitude = 0.0f;
    int m_count = 0;
    bool m_flag = true;
    QString m_path;
};

class TestKxSettings : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    QString filePath() const { return m_folder.filePath(QStringLiteral("SampleSettings.json")); }

    void writeFile(const QByteArray& bytes)
    {
        QFile file(filePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QJsonObject readFile()
    {
        QFile file(filePath());
        if (!file.open(QIODevice::ReadOnly))
            return QJsonObject();
        return QJsonDocument::fromJson(file.readAll()).object();
    }

    void expectDefaults(const SampleSettings& settings)
    {
        QCOMPARE(settings.m_speed, SampleSettings::Fast);
        QCOMPARE(settings.m_amplitude, 250.0f);
        QCOMPARE(settings.m_count, 7);
        QCOMPARE(settings.m_flag, false);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        KxSettings::setStorageFolder(m_folder.path());
    }

    void init()
    {
        QDir folder(m_folder.path());
        for (const QString& name : folder.entryList(QDir::Files))
            folder.remove(name);
    }

    void descriptorAndLookup()
    {
        SampleSettings settings;
        QCOMPARE(settings.getFilePath(), filePath());
        QStringList names;
        for (const MetaDescription* description : settings.metaDescriptor())
            names.append(description->getName());
        QCOMPARE(names, QStringList({"Speed", "Amplitude", "Count", "Flag", "Path"}));
        QCOMPARE(settings.getPropertyByName("Count")->getName(), QStringLiteral("Count"));
        QCOMPARE(settings.getPropertyByName("amplitude")->getName(), QStringLiteral("Amplitude"));
        QVERIFY(!settings.getPropertyByName("objectName"));
        QVERIFY(!settings.getPropertyByName("Nothing"));
        QVERIFY(settings.getPropertyCapabilities("Nothing").isEmpty());

        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        QVERIFY(!settings.setTextValue("Nothing", "1"));
        QCOMPARE(console.count(), 1);
        QVERIFY(settings.setTextValue("speed", "slow"));
        QCOMPARE(settings.getTextValue("Speed"), QStringLiteral("Slow"));
    }

    void capabilities()
    {
        const QStringList keys = {"name", "nameTranslated", "description", "type", "value", "default", "hideDefault",
                                  "readOnly", "hidden", "min", "max", "step", "prefix", "prefixTranslated", "suffix",
                                  "suffixTranslated", "category", "categoryTranslated", "enum", "enums",
                                  "enumTranslations", "enumsTranslations", "visibleBound", "specialType",
                                  "pickOption", "pickExtensions"};
        SampleSettings settings;
        const QList<QVariantMap> all = settings.getAllCapabilities();
        QCOMPARE(all.size(), 5);
        for (const QVariantMap& map : all) {
            for (const QString& key : keys)
                QVERIFY2(map.contains(key), qPrintable(map.value("name").toString() + " lacks " + key));
        }

        const QVariantMap speed = settings.getPropertyCapabilities("Speed");
        QCOMPARE(speed.value("type").toString(), QStringLiteral("Enum"));
        QCOMPARE(speed.value("value").toString(), QStringLiteral("Fast"));
        QCOMPARE(speed.value("default").toString(), QStringLiteral("Fast"));
        QCOMPARE(speed.value("enum").toString(), QStringLiteral("Mode"));
        QCOMPARE(speed.value("enums").toStringList(), QStringList({"Off", "Slow", "Fast"}));
        QCOMPARE(speed.value("enumsTranslations").toStringList(), QStringList({"Off", "Slow", "Fast"}));
        QCOMPARE(speed.value("category").toString(), QStringLiteral("1.Common"));
        QCOMPARE(speed.value("categoryTranslated").toString(), QStringLiteral("Common"));
        QCOMPARE(speed.value("readOnly").toString(), QStringLiteral("false"));

        const QVariantMap amplitude = settings.getPropertyCapabilities("Amplitude");
        QCOMPARE(amplitude.value("type").toString(), QStringLiteral("float"));
        QCOMPARE(amplitude.value("value").toString(), QStringLiteral("250"));
        QCOMPARE(amplitude.value("min").toString(), QStringLiteral("1"));
        QCOMPARE(amplitude.value("max").toString(), QStringLiteral("10000"));
        QCOMPARE(amplitude.value("step").toString(), QStringLiteral("0.1"));
        QCOMPARE(amplitude.value("precision").toString(), QStringLiteral("1"));
        QCOMPARE(amplitude.value("prefix").toString(), QStringLiteral("±"));
        QCOMPARE(amplitude.value("suffixTranslated").toString(), QStringLiteral("µV"));
        QCOMPARE(amplitude.value("visibleBound").toString(), QStringLiteral("Speed:!Off"));
        QCOMPARE(amplitude.value("hidden").toString(), QStringLiteral("false"));
        QVERIFY(settings.setTextValue("Speed", "Off"));
        QCOMPARE(settings.getPropertyCapabilities("Amplitude").value("hidden").toString(), QStringLiteral("true"));

        const QVariantMap count = settings.getPropertyCapabilities("Count");
        QCOMPARE(count.value("hideDefault").toString(), QStringLiteral("true"));
        QCOMPARE(count.value("readOnly").toString(), QStringLiteral("true"));
        QCOMPARE(count.value("min").toString(), QString());
        QCOMPARE(settings.getPropertyCapabilities("Flag").value("hidden").toString(), QStringLiteral("true"));

        const QVariantMap path = settings.getPropertyCapabilities("Path");
        QCOMPARE(path.value("readOnly").toString(), QStringLiteral("true"));
        QCOMPARE(path.value("specialType").toString(), QStringLiteral("PickFile"));
        QCOMPARE(path.value("pickOption").toString(), QStringLiteral("*.edf *.bdf"));
        QCOMPARE(path.value("pickExtensions").toStringList(), QStringList({"edf", "bdf"}));
    }

    void capabilitiesJson()
    {
        SampleSettings settings;
        QVERIFY(settings.setTextValue("Speed", "Off"));
        const QJsonArray all = settings.getAllCapabilitiesJson(false);
        QCOMPARE(all.size(), 5);
        QCOMPARE(all.at(1).toObject().value("name").toString(), QStringLiteral("Amplitude"));
        QCOMPARE(all.at(1).toObject().value("suffix").toString(), QStringLiteral("µV"));
        QCOMPARE(all.at(0).toObject().value("enums").toArray().size(), 3);
        // Hidden now: Amplitude (bound fails) and Flag (NotVisible).
        const QJsonArray visible = settings.getAllCapabilitiesJson(true);
        QStringList names;
        for (const QJsonValue& value : visible)
            names.append(value.toObject().value("name").toString());
        QCOMPARE(names, QStringList({"Speed", "Count", "Path"}));
    }

    void persistenceRoundTrip()
    {
        {
            SampleSettings settings;
            expectDefaults(settings);
            QVERIFY(!QFile::exists(filePath()));
            QVERIFY(settings.setTextValue("Amplitude", "0.1e1"));
            QVERIFY(settings.setTextValue("Speed", "Slow"));
            settings.setProperty("Count", 42);
            QVERIFY(settings.setTextValue("Path", "/data/a b.edf"));
        }
        // Written as plain JSON values, floats in their short form.
        const QJsonObject file = readFile();
        QCOMPARE(file.value("Amplitude").toDouble(), 1.0);
        QCOMPARE(file.value("Speed").toString(), QStringLiteral("Slow"));
        QCOMPARE(file.value("Count").toInt(), 42);
        QCOMPARE(file.value("Flag").toBool(true), false);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"SampleSettings.json"}));

        SampleSettings again;
        QCOMPARE(again.m_amplitude, 1.0f);
        QCOMPARE(again.m_speed, SampleSettings::Slow);
        QCOMPARE(again.m_count, 42);
        QCOMPARE(again.m_path, QStringLiteral("/data/a b.edf"));
    }

    void floatsStayShortInTheFile()
    {
        SampleSettings settings;
        QVERIFY(settings.setTextValue("Amplitude", "1.1"));
        QFile file(filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY2(text.contains("\"Amplitude\": 1.1,"), text.constData());
    }

    void autoSaveOff()
    {
        SampleSettings settings;
        settings.setAutoSave(false);
        QVERIFY(settings.setTextValue("Count", "9"));
        QVERIFY(!QFile::exists(filePath()));
        QVERIFY(settings.save());
        QCOMPARE(readFile().value("Count").toInt(), 9);
    }

    void damagedFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not JSON") << QByteArray("{\"Count\": 5,");
        QTest::newRow("not an object") << QByteArray("[1, 2]");
        QTest::newRow("binary") << QByteArray("\x00\xff\x10", 3);
    }

    void damagedFile()
    {
        QFETCH(QByteArray, content);
        writeFile(content);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        SampleSettings settings;
        expectDefaults(settings);
        QCOMPARE(console.count(), 1);
        QVERIFY(console.first().first().toString().contains("damaged"));
        QFile aside(filePath() + ".bad");
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), content);
        // The defaults were written in place of the damaged file.
        QCOMPARE(readFile().value("Count").toInt(), 7);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
    }

    void badValuesFallBackToDefaults()
    {
        writeFile(R"({"Count": 500, "Amplitude": "loud", "Flag": [1], "Speed": "slow", "Extra": {"kept": true}})");
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        SampleSettings settings;
        QCOMPARE(console.count(), 3);
        QCOMPARE(settings.m_count, 7);
        QCOMPARE(settings.m_amplitude, 250.0f);
        QCOMPARE(settings.m_flag, false);
        QCOMPARE(settings.m_speed, SampleSettings::Slow);
        // Corrected at once; an entry of another version is kept.
        const QJsonObject file = readFile();
        QCOMPARE(file.value("Count").toInt(), 7);
        QCOMPARE(file.value("Extra").toObject().value("kept").toBool(), true);
        QVERIFY(!QFile::exists(filePath() + ".bad"));
    }
};

QTEST_GUILESS_MAIN(TestKxSettings)
#include "tst_kxsettings.moc"
