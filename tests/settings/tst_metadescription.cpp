#include "services/GlobalConsole.h"
#include "settings/MetaDescription.h"
#include "settings/VisibilityCondition.h"

#include <QDateTime>
#include <QPoint>
#include <QSignalSpy>
#include <QSizeF>
#include <QtTest>

// A settings-like object with one property per key word and default form.
class Sample : public QObject
{
    Q_OBJECT
public:
    enum Mode { Off = 0, Slow = 1, Fast = 2 };
    Q_ENUM(Mode)

    Q_PROPERTY(int Plain MEMBER m_plain NOTIFY changed)
    Q_PROPERTY(int EditTrueCase MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("EditTrueCaseEditable", "True")
    Q_PROPERTY(int EditYes MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("EditYesEditable", "yes")

    Q_PROPERTY(QString Channels MEMBER m_channels NOTIFY changed)
    Q_CLASSINFO("ChannelsDefault", "\"O1,O2\"")
    Q_CLASSINFO("ChannelsEditable", "true")

    Q_PROPERTY(float Ratio MEMBER m_ratio NOTIFY changed)
    Q_CLASSINFO("RatioDefault", "0.25f")
    Q_CLASSINFO("RatioMinimum", "0.1")
    Q_CLASSINFO("RatioMaximum", "1.0f")
    Q_CLASSINFO("RatioStep", "0.05")
    Q_CLASSINFO("RatioPrecision", "2")
    Q_CLASSINFO("RatioPrefix", "!-±")
    Q_CLASSINFO("RatioSuffix", "%")

    Q_PROPERTY(int Count MEMBER m_count NOTIFY countChanged)
    Q_CLASSINFO("CountDefault", "7")
    Q_CLASSINFO("CountMinimum", "-5")
    Q_CLASSINFO("CountMaximum", "100")

    Q_PROPERTY(bool Flag MEMBER m_flag NOTIFY changed)
    Q_CLASSINFO("FlagDefault", "true")

    Q_PROPERTY(Sample::Mode Choice MEMBER m_mode NOTIFY changed)
    Q_CLASSINFO("ChoiceDefault", "Sample::Mode::Fast")

    Q_PROPERTY(Qt::AlignmentFlag Alignment MEMBER m_alignment NOTIFY changed)
    Q_CLASSINFO("AlignmentDefault", "Qt::AlignRight")
    Q_PROPERTY(int CheckState MEMBER m_checkState NOTIFY changed)
    Q_CLASSINFO("CheckStateDefault", "Qt::Checked")
    Q_PROPERTY(QString Colour MEMBER m_colour NOTIFY changed)
    Q_CLASSINFO("ColourDefault", "#ff8000")
    Q_PROPERTY(QDateTime Stamp MEMBER m_stamp NOTIFY changed)
    Q_CLASSINFO("StampDefault", "QDateTime::currentDateTime")
    Q_PROPERTY(QPoint Origin MEMBER m_origin NOTIFY changed)
    Q_CLASSINFO("OriginDefault", "QPoint(1, 2)")
    Q_PROPERTY(QSizeF Area MEMBER m_area NOTIFY changed)
    Q_CLASSINFO("AreaDefault", "QSizeF(3.5,4)")

    Q_PROPERTY(QString Path MEMBER m_path NOTIFY changed)
    Q_CLASSINFO("PathCategory", "1.Common")
    Q_CLASSINFO("PathNoDefault", "")
    Q_CLASSINFO("PathReadOnly", "")
    Q_CLASSINFO("PathNotVisible", "")
    Q_CLASSINFO("PathDisplayName", "Recording")
    Q_CLASSINFO("PathDescription", "File to play")
    Q_CLASSINFO("PathPlaceholder", "choose a file")
    Q_CLASSINFO("PathSuggestions", "a.edf,b.bdf")
    Q_CLASSINFO("PathSpecialType", "PickFile:*.edf *.bdf")
    Q_CLASSINFO("PathPriority", "3")
    Q_CLASSINFO("PathIcon", ":/Images/translate.svg")

    Q_PROPERTY(int OnlyFast MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("OnlyFastVisibleBound", "Choice:Fast")
    Q_PROPERTY(int NeitherOffNorSlow MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("NeitherOffNorSlowVisibleBound", "Choice:!Off&&!Slow")
    Q_PROPERTY(int SlowOrFast MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("SlowOrFastVisibleBound", "Choice:Slow|Fast")
    Q_PROPERTY(int FastAndFlag MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("FastAndFlagVisibleBound", "Choice:fast;Flag:true")
    Q_PROPERTY(int NoFlag MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("NoFlagVisibleBinded", "Flag:false")
    Q_PROPERTY(int CountZeroOrNotSmall MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("CountZeroOrNotSmallVisibleBound", "Count:0|!1&&!2")
    Q_PROPERTY(int UnknownBound MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("UnknownBoundVisibleBound", "Missing:yes")

Q_SIGNALS:
    void changed();
    void countChanged();

public:
    int m_plain = 0;
    QString m_channels;
    float m_ratio = 0.5f;
    int m_count = 0;
    bool m_flag = false;
    Mode m_mode = Off;
    Qt::AlignmentFlag m_alignment = Qt::AlignLeft;
    int m_checkState = 0;
    QString m_colour;
    QDateTime m_stamp;
    QPoint m_origin;
    QSizeF m_area;
    QString m_path;
};

class TestMetaDescription : public QObject
{
    Q_OBJECT

    Sample m_sample;

    MetaDescription* describe(const char* name, QObject* parent)
    {
        auto* description = new MetaDescription(parent);
        if (!description->set(m_sample.metaObject()->indexOfProperty(name), &m_sample))
            qFatal("no property %s", name);
        return description;
    }

private Q_SLOTS:
    void propertyWithoutEntries()
    {
        QObject owner;
        const MetaDescription* plain = describe("Plain", &owner);
        QCOMPARE(plain->getName(), QStringLiteral("Plain"));
        QCOMPARE(plain->getDisplayName(), QStringLiteral("Plain"));
        QCOMPARE(plain->getTypeName(), QStringLiteral("int"));
        QVERIFY(plain->isVisible());
        QVERIFY(plain->isVisibleNow());
        QVERIFY(!plain->isEditable());
        QVERIFY(!plain->hasDefault());
        QVERIFY(plain->getDefaultText().isEmpty());
        QCOMPARE(plain->getPrecision(), -1);
        QVERIFY(!describe("EditTrueCase", &owner)->isEditable());
        QVERIFY(!describe("EditYes", &owner)->isEditable());
        QVERIFY(describe("Channels", &owner)->isEditable());

        MetaDescription bad;
        QVERIFY(!bad.set(999, &m_sample));
        QVERIFY(!bad.set(0, nullptr));
    }

    void everyKeyWordIsRead()
    {
        QObject owner;
        const MetaDescription* path = describe("Path", &owner);
        QCOMPARE(path->getCategory(), QStringLiteral("1.Common"));
        QVERIFY(path->isNoDefault());
        QVERIFY(path->isReadOnly());
        QVERIFY(!path->isVisible());
        QVERIFY(!path->isVisibleNow());
        QCOMPARE(path->getDisplayName(), QStringLiteral("Recording"));
        QCOMPARE(path->getDescription(), QStringLiteral("File to play"));
        QCOMPARE(path->getPlaceholder(), QStringLiteral("choose a file"));
        QCOMPARE(path->getSuggestions(), QStringLiteral("a.edf,b.bdf"));
        QCOMPARE(path->getSpecialKind(), QStringLiteral("PickFile"));
        QCOMPARE(path->getSpecialOption(), QStringLiteral("*.edf *.bdf"));
        QCOMPARE(path->getPriority(), 3);
        QCOMPARE(path->getIcon(), QStringLiteral(":/Images/translate.svg"));

        const MetaDescription* ratio = describe("Ratio", &owner);
        QCOMPARE(ratio->getMinimum(), QStringLiteral("0.1"));
        QCOMPARE(ratio->getMaximum(), QStringLiteral("1.0f"));
        QCOMPARE(ratio->getStep(), QStringLiteral("0.05"));
        QCOMPARE(ratio->getPrecision(), 2);
        QCOMPARE(ratio->getPrefix(), QStringLiteral("!-±"));
        QCOMPARE(ratio->getSuffix(), QStringLiteral("%"));

        const MetaDescription* choice = describe("Choice", &owner);
        QCOMPARE(choice->getTypeName(), QStringLiteral("Enum"));
        QVERIFY(choice->isEnumType());
        QCOMPARE(QByteArray(choice->enumerator().name()), QByteArray("Mode"));
        QCOMPARE(describe("NoFlag", &owner)->getVisibleBound(), QStringLiteral("Flag:false"));
    }

    void defaultForms_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("quoted text") << "Channels" << QVariant(QStringLiteral("O1,O2"));
        QTest::newRow("float with f") << "Ratio" << QVariant(0.25f);
        QTest::newRow("integer") << "Count" << QVariant(7);
        QTest::newRow("boolean") << "Flag" << QVariant(true);
        QTest::newRow("scoped enum") << "Choice" << QVariant::fromValue(Sample::Fast);
        QTest::newRow("framework enum property") << "Alignment" << QVariant::fromValue(Qt::AlignRight);
        QTest::newRow("framework enum into int") << "CheckState" << QVariant(int(Qt::Checked));
        QTest::newRow("colour") << "Colour" << QVariant(QStringLiteral("#ff8000"));
        QTest::newRow("point") << "Origin" << QVariant(QPoint(1, 2));
        QTest::newRow("size") << "Area" << QVariant(QSizeF(3.5, 4.0));
    }

    void defaultForms()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, expected);
        QObject owner;
        MetaDescription* description = describe(property.toLatin1().constData(), &owner);
        QVERIFY(description->hasDefault());
        QVERIFY(description->setDefault());
        QCOMPARE(m_sample.property(property.toLatin1().constData()), expected);
    }

    void dateTimeDefaultIsTheMomentOfReading()
    {
        QObject owner;
        const QDateTime before = QDateTime::currentDateTime();
        MetaDescription* stamp = describe("Stamp", &owner);
        const QDateTime after = QDateTime::currentDateTime();
        QVERIFY(stamp->setDefault());
        QVERIFY(m_sample.m_stamp >= before && m_sample.m_stamp <= after);
    }

    void pointsAndSizes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("first");
        QTest::addColumn<double>("second");
        QTest::newRow("QPoint") << "QPoint(1, 2)" << true << 1.0 << 2.0;
        QTest::newRow("QSizeF") << "QSizeF(3.5,4)" << true << 3.5 << 4.0;
        QTest::newRow("QPointF floats") << "QPointF(-1.5f, 2e1)" << true << -1.5 << 20.0;
        QTest::newRow("bare comma") << "1,2" << true << 1.0 << 2.0;
        QTest::newRow("by x") << "1x2" << true << 1.0 << 2.0;
        QTest::newRow("spaced") << " 640 x 480 " << true << 640.0 << 480.0;
        QTest::newRow("one number") << "1" << false << 0.0 << 0.0;
        QTest::newRow("three numbers") << "1,2,3" << false << 0.0 << 0.0;
        QTest::newRow("words") << "a,b" << false << 0.0 << 0.0;
        QTest::newRow("missing second") << "QPoint(1,)" << false << 0.0 << 0.0;
        QTest::newRow("empty") << "" << false << 0.0 << 0.0;
    }

    void pointsAndSizes()
    {
        QFETCH(QString, text);
        QFETCH(bool, ok);
        QFETCH(double, first);
        QFETCH(double, second);
        double a = 0.0;
        double b = 0.0;
        QCOMPARE(MetaDescription::parsePointOrSize(text, a, b), ok);
        if (ok) {
            QCOMPARE(a, first);
            QCOMPARE(b, second);
        }
    }

    void textConversions_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("int") << "Count" << "42" << QVariant(42);
        QTest::newRow("int at minimum, spaces") << "Count" << " -5 " << QVariant(-5);
        QTest::newRow("float") << "Ratio" << "0.5" << QVariant(0.5f);
        QTest::newRow("float at minimum") << "Ratio" << "0.1" << QVariant(0.1f);
        QTest::newRow("bool upper") << "Flag" << "FALSE" << QVariant(false);
        QTest::newRow("bool 1") << "Flag" << "1" << QVariant(true);
        QTest::newRow("bool 0") << "Flag" << "0" << QVariant(false);
        QTest::newRow("enum key any case") << "Choice" << "slow" << QVariant::fromValue(Sample::Slow);
        QTest::newRow("enum number") << "Choice" << "0" << QVariant::fromValue(Sample::Off);
        QTest::newRow("date-time") << "Stamp" << "2024-03-01T10:20:30"
                                   << QVariant(QDateTime(QDate(2024, 3, 1), QTime(10, 20, 30)));
        QTest::newRow("point") << "Origin" << "3,4" << QVariant(QPoint(3, 4));
        QTest::newRow("size") << "Area" << "2x5.5" << QVariant(QSizeF(2, 5.5));
        QTest::newRow("text") << "Channels" << "a, b" << QVariant(QStringLiteral("a, b"));
    }

    void textConversions()
    {
        QFETCH(QString, property);
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        QObject owner;
        MetaDescription* description = describe(property.toLatin1().constData(), &owner);
        QVERIFY(description->setTextValue(text));
        QCOMPARE(description->getValue(), expected);
        // The text form reads back to the same value.
        const QVariant before = description->getValue();
        QVERIFY(description->setTextValue(description->getValueText()));
        QCOMPARE(description->getValue(), before);
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason");
        QTest::newRow("above maximum") << "Count" << "101" << "above the maximum 100";
        QTest::newRow("below minimum") << "Count" << "-6" << "below the minimum -5";
        QTest::newRow("not a number") << "Count" << "abc" << "not an integer";
        QTest::newRow("fraction for int") << "Count" << "1.5" << "not an integer";
        QTest::newRow("beyond int") << "Count" << "99999999999" << "outside the range";
        QTest::newRow("float above") << "Ratio" << "1.01" << "above the maximum 1";
        QTest::newRow("float below") << "Ratio" << "0.09" << "below the minimum 0.1";
        QTest::newRow("nan") << "Ratio" << "nan" << "not a number";
        QTest::newRow("float text") << "Ratio" << "half" << "not a number";
        QTest::newRow("bool yes") << "Flag" << "yes" << "not a boolean";
        QTest::newRow("bool 2") << "Flag" << "2" << "not a boolean";
        QTest::newRow("unknown enum key") << "Choice" << "Medium" << "expected one of Off, Slow, Fast";
        QTest::newRow("unknown enum number") << "Choice" << "7" << "expected one of";
        QTest::newRow("bad date") << "Stamp" << "yesterday" << "not an ISO date-time";
        QTest::newRow("fractional point") << "Origin" << "1.5,2" << "not a pair of integers";
        QTest::newRow("half a point") << "Origin" << "1" << "not a pair of numbers";
    }

    void refusals()
    {
        QFETCH(QString, property);
        QFETCH(QString, text);
        QFETCH(QString, reason);
        QObject owner;
        MetaDescription* description = describe(property.toLatin1().constData(), &owner);
        const QVariant before = description->getValue();
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        QSignalSpy changed(description, &MetaDescription::valueChanged);
        QVERIFY(!description->setTextValue(text));
        QCOMPARE(description->getValue(), before);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(console.count(), 1);
        const QString line = console.first().first().toString();
        QVERIFY2(line.contains(property) && line.contains(QLatin1Char('"') + text + QLatin1Char('"'))
                     && line.contains(reason),
                 qPrintable(line));
    }

    void setValueChecksTooAndSignals()
    {
        QObject owner;
        MetaDescription* count = describe("Count", &owner);
        QSignalSpy changed(count, &MetaDescription::valueChanged);
        QVERIFY(count->setValue(3));
        QVERIFY(count->setValue(4.0));
        QVERIFY(!count->setValue(200));
        QVERIFY(!count->setValue(2.5));
        QVERIFY(!count->setValue(QVariant()));
        QCOMPARE(m_sample.m_count, 4);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().first(), QVariant(4));

        MetaDescription* ratio = describe("Ratio", &owner);
        QVERIFY(!ratio->setValue(std::numeric_limits<double>::quiet_NaN()));
        QVERIFY(!ratio->setValue(std::numeric_limits<float>::infinity()));
        QVERIFY(ratio->setValue(QStringLiteral("0.75")));
        QCOMPARE(m_sample.m_ratio, 0.75f);
    }

    void visibility_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("flag");
        QTest::addColumn<int>("count");
        // Visible: OnlyFast, NeitherOffNorSlow, SlowOrFast, FastAndFlag, NoFlag, CountZeroOrNotSmall
        QTest::addColumn<QString>("expected");
        QTest::newRow("off, no flag, 0") << int(Sample::Off) << false << 0 << "000011";
        QTest::newRow("slow, flag, 1") << int(Sample::Slow) << true << 1 << "001000";
        QTest::newRow("fast, flag, 2") << int(Sample::Fast) << true << 2 << "111100";
        QTest::newRow("fast, no flag, 5") << int(Sample::Fast) << false << 5 << "111011";
    }

    void visibility()
    {
        QFETCH(int, mode);
        QFETCH(bool, flag);
        QFETCH(int, count);
        QFETCH(QString, expected);
        QObject owner;
        const QList<const char*> names = {"OnlyFast", "NeitherOffNorSlow", "SlowOrFast",
                                          "FastAndFlag", "NoFlag", "CountZeroOrNotSmall"};
        QList<MetaDescription*> descriptions;
        for (const char* name : names)
            descriptions.append(describe(name, &owner));
        m_sample.m_mode = Sample::Mode(mode);
        m_sample.m_flag = flag;
        m_sample.m_count = count;
        for (int i = 0; i < names.size(); ++i)
            QVERIFY2(descriptions[i]->isVisibleNow() == (expected[i] == QLatin1Char('1')), names[i]);
        QVERIFY(describe("UnknownBound", &owner)->isVisibleNow());
    }

    void conditionParsing()
    {
        VisibilityCondition rate;
        QVERIFY(VisibilityCondition::parse(QStringLiteral(" Rate : 2.0 | ! 3 && !4 "), rate));
        QCOMPARE(rate.getPropertyName(), QStringLiteral("Rate"));
        QVERIFY(rate.holds(QStringLiteral("2")));
        QVERIFY(rate.holds(QStringLiteral("5")));
        QVERIFY(!rate.holds(QStringLiteral("3")));
        QVERIFY(!rate.holds(QStringLiteral("4.0")));


        QString problem;
        const QList<VisibilityCondition> conditions =
            VisibilityCondition::parseList(QStringLiteral("A:1;;NoColon;:x;B:!;C:2&&|3"), &problem);
        QCOMPARE(conditions.size(), 1);
        QCOMPARE(conditions.first().getPropertyName(), QStringLiteral("A"));
        QVERIFY(problem.contains(QStringLiteral("NoColon")));
        QVERIFY(problem.contains(QStringLiteral("B:!")));
        QVERIFY(problem.contains(QStringLiteral("C:2&&|3")));
    }
};

QTEST_GUILESS_MAIN(TestMetaDescription)
#include "tst_metadescription.moc"
