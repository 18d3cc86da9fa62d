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

    static QByteArray bytesOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QJsonObject readFile() const { return QJsonDocument::fromJson(bytesOf(filePath())).object(); }

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
        for (const QString& name : QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden))
            QFile::remove(m_folder.filePath(name));
    }

    void descriptorAndLookup()
    {
        SampleSettings settings;
        QStringList names;
        for (const MetaDescription* description : settings.metaDescriptor())
            names.append(description->getName());
        QCOMPARE(names, QStringList({"Speed", "Amplitude", "Count", "Flag", "Path"}));
        QCOMPARE(settings.getPropertyByName("amplitude")->getName(), QStringLiteral("Amplitude"));
        QVERIFY(!settings.getPropertyByName("objectName"));
        QVERIFY(settings.getPropertyCapabilities("Nothing").isEmpty());

        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        QVERIFY(!settings.setTextValue("Nothing", "1"));
        QCOMPARE(console.count(), 1);
        QVERIFY(settings.setTextValue("speed", "slow"));
        QCOMPARE(settings.getTextValue("Speed"), QStringLiteral("Slow"));
    }

    void capabilities_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected"); // lists joined by spaces
        const QList<QStringList> rows = {
            {"Speed", "type", "Enum"}, {"Speed", "value", "Fast"}, {"Speed", "default", "Fast"},
            {"Speed", "enum", "Mode"}, {"Speed", "enums", "Off Slow Fast"}, {"Speed", "category", "1.Common"},
            {"Speed", "categoryTranslated", "Common"}, {"Speed", "readOnly", "false"},
            {"Amplitude", "value", "250"}, {"Amplitude", "min", "1"}, {"Amplitude", "max", "10000"},
            {"Amplitude", "step", "0.1"}, {"Amplitude", "precision", "1"}, {"Amplitude", "prefix", "±"},
            {"Amplitude", "suffixTranslated", "µV"}, {"Amplitude", "visibleBound", "Speed:!Off"},
            {"Amplitude", "hidden", "false"}, {"Count", "hideDefault", "true"}, {"Count", "readOnly", "true"},
            {"Count", "min", ""}, {"Flag", "hidden", "true"}, {"Path", "readOnly", "true"},
            {"Path", "specialType", "PickFile"}, {"Path", "pickOption", "*.edf *.bdf"},
            {"Path", "pickExtensions", "edf bdf"}};
        for (const QStringList& row : rows)
            QTest::addRow("%s %s", qPrintable(row[0]), qPrintable(row[1])) << row[0] << row[1] << row[2];
    }

    void capabilities()
    {
        QFETCH(QString, property);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        SampleSettings settings;
        const QVariant value = settings.getPropertyCapabilities(property).value(key);
        QCOMPARE(value.typeId() == QMetaType::QStringList ? value.toStringList().join(' ') : value.toString(),
                 expected);
    }

    void capabilitiesJson()
    {
        const QStringList keys = {"name", "nameTranslated", "description", "type", "value", "default", "hideDefault",
                                  "readOnly", "hidden", "min", "max", "step", "prefix", "prefixTranslated", "suffix",
                                  "suffixTranslated", "category", "categoryTranslated", "enum", "enums",
                                  "enumTranslations", "enumsTranslations", "visibleBound", "specialType",
                                  "pickOption", "pickExtensions"};
        SampleSettings settings;
        QVERIFY(settings.setTextValue("Speed", "Off"));
        const QJsonArray all = settings.getAllCapabilitiesJson(false);
        QCOMPARE(all.size(), 5);
        for (const QJsonValue& value : all) {
            for (const QString& key : keys)
                QVERIFY2(value.toObject().contains(key), qPrintable(value["name"].toString() + " lacks " + key));
        }
        QCOMPARE(all.at(0)["enums"].toArray().size(), 3);
        QCOMPARE(QJsonObject::fromVariantMap(settings.getAllCapabilities().at(1)), all.at(1).toObject());
        QCOMPARE(all.at(1)["hidden"].toString(), QStringLiteral("true"));
        // Hidden now: Amplitude (bound fails) and Flag (NotVisible).
        QStringList names;
        for (const QJsonValue& value : settings.getAllCapabilitiesJson(true))
            names.append(value["name"].toString());
        QCOMPARE(names, QStringList({"Speed", "Count", "Path"}));
    }

    void persistenceRoundTrip()
    {
        {
            SampleSettings settings;
            expectDefaults(settings);
            QVERIFY(settings.setTextValue("Amplitude", "1.1"));
            QVERIFY(settings.setTextValue("Speed", "Slow"));
            settings.setProperty("Count", 42);
            QVERIFY(settings.setTextValue("Path", "/data/a b.edf"));
        }
        // Plain JSON values, floats in their short form, written atomically (no files left over).
        const QByteArray text = bytesOf(filePath());
        QVERIFY2(text.contains("\"Amplitude\": 1.1,"), text.constData());
        const QJsonObject object = QJsonDocument::fromJson(text).object();
        QCOMPARE(object.value("Speed").toString(), QStringLiteral("Slow"));
        QCOMPARE(object.value("Count").toInt(), 42);
        QCOMPARE(object.value("Flag").toBool(true), false);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"SampleSettings.json"}));

        SampleSettings again;
        QCOMPARE(again.m_amplitude, 1.1f);
        QCOMPARE(again.m_speed, SampleSettings::Slow);
        QCOMPARE(again.m_count, 42);
        QCOMPARE(again.m_path, QStringLiteral("/data/a b.edf"));

        // Without auto-save a change waits for save().
        again.setAutoSave(false);
        QVERIFY(again.setTextValue("Count", "9"));
        QCOMPARE(readFile().value("Count").toInt(), 42);
        QVERIFY(again.save());
        QCOMPARE(readFile().value("Count").toInt(), 9);
    }

    void damagedFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addRow("not JSON") << QByteArray("{\"Count\": 5,");
        QTest::addRow("not an object") << QByteArray("[1, 2]");
        QTest::addRow("binary") << QByteArray("\x00\xff\x10", 3);
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
        QCOMPARE(bytesOf(filePath() + ".bad"), content);
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
