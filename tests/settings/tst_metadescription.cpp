#include "services/GlobalConsole.h"
#include "settings/MetaDescription.h"
#include "settings/VisibilityCondition.h"

#include <QDateTime>
#include <QPoint>
#include <QSignalSpy>
#include <QSizeF>
#include <QtTest>

// A settings-like object with one property per default form and key word.
class Sample : public QObject
{
    Q_OBJECT
public:
    enum Mode { Off = 0, Slow = 1, Fast = 2 };
    Q_ENUM(Mode)

    Q_PROPERTY(int Plain MEMBER m_plain NOTIFY changed)
    Q_PROPERTY(int EditTrueCase MEMBER m_plain NOTIFY changed)
    Q_CLASSINFO("EditTrueCaseEditable", "True")

    Q_PROPERTY(QString Channels MEMBER m_channels NOTIFY changed)
    Q_CLASSINFO("ChannelsDefault", "\"O1,O2\"")
    Q_CLASSINFO("ChannelsEditable", "true")
    Q_PROPERTY(float Ratio MEMBER m_ratio NOTIFY changed)
    Q_CLASSINFO("RatioDefault", "0.25f")
    Q_CLASSINFO("RatioMinimum", "0.01")
    Q_CLASSINFO("RatioMaximum", "1.1f")
    Q_PROPERTY(int Count MEMBER m_count NOTIFY changed)
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
    QObject m_owner; // parent of every description made by describe()

    MetaDescription* describe(const QString& name)
    {
        auto* description = new MetaDescription(&m_owner);
        if (!description->set(m_sample.metaObject()->indexOfProperty(name.toLatin1().constData()), &m_sample))
            qFatal("no property %s", qPrintable(name));
        return description;
    }

private Q_SLOTS:
    void cleanup() { qDeleteAll(m_owner.children()); }

    void propertyWithoutEntries()
    {
        const MetaDescription* plain = describe("Plain");
        QCOMPARE(plain->getDisplayName(), QStringLiteral("Plain"));
        QCOMPARE(plain->getTypeName(), QStringLiteral("int"));
        QVERIFY(plain->isVisibleNow());
        QVERIFY(!plain->isEditable());
        QVERIFY(!plain->hasDefault());
        QVERIFY(!describe("EditTrueCase")->isEditable());
        QVERIFY(describe("Channels")->isEditable());

        MetaDescription bad;
        QVERIFY(!bad.set(999, &m_sample));
        QVERIFY(!bad.set(0, nullptr));
    }

    // Range, step, prefix and suffix are covered through the capabilities in tst_kxsettings.
    void everyKeyWordIsRead()
    {
        const MetaDescription* path = describe("Path");
        QVERIFY(path->isNoDefault() && path->isReadOnly() && !path->isVisibleNow());
        const QStringList read = {path->getCategory(), path->getDisplayName(), path->getDescription(),
                                  path->getPlaceholder(), path->getSuggestions(), path->getSpecialKind(),
                                  path->getSpecialOption(), QString::number(path->getPriority()), path->getIcon()};
        QCOMPARE(read, QStringList({"1.Common", "Recording", "File to play", "choose a file", "a.edf,b.bdf",
                                    "PickFile", "*.edf *.bdf", "3", ":/Images/translate.svg"}));
        const MetaDescription* choice = describe("Choice");
        QCOMPARE(choice->getTypeName(), QStringLiteral("Enum"));
        QCOMPARE(QByteArray(choice->enumerator().name()), QByteArray("Mode"));
        QCOMPARE(describe("NoFlag")->getVisibleBound(), QStringLiteral("Flag:false"));
    }

    void defaultForms_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("expected");
        QTest::addRow("quoted text") << "Channels" << QVariant(QStringLiteral("O1,O2"));
        QTest::addRow("float with f") << "Ratio" << QVariant(0.25f);
        QTest::addRow("integer") << "Count" << QVariant(7);
        QTest::addRow("boolean") << "Flag" << QVariant(true);
        QTest::addRow("scoped enum") << "Choice" << QVariant::fromValue(Sample::Fast);
        QTest::addRow("framework enum property") << "Alignment" << QVariant::fromValue(Qt::AlignRight);
        QTest::addRow("framework enum into int") << "CheckState" << QVariant(int(Qt::Checked));
        QTest::addRow("colour") << "Colour" << QVariant(QStringLiteral("#ff8000"));
        QTest::addRow("point") << "Origin" << QVariant(QPoint(1, 2));
        QTest::addRow("size") << "Area" << QVariant(QSizeF(3.5, 4.0));
    }

    void defaultForms()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, expected);
        QVERIFY(describe(property)->setDefault());
        QCOMPARE(m_sample.property(property.toLatin1().constData()), expected);
    }

    void dateTimeDefaultIsTheMomentOfReading()
    {
        const QDateTime before = QDateTime::currentDateTime();
        MetaDescription* stamp = describe("Stamp");
        const QDateTime after = QDateTime::currentDateTime();
        QVERIFY(stamp->setDefault());
        QVERIFY(m_sample.m_stamp >= before && m_sample.m_stamp <= after);
        double a = 0.0, b = 0.0;
        QVERIFY(MetaDescription::parsePointOrSize(QStringLiteral("QPointF(-1.5f, 2e1)"), a, b));
        QCOMPARE(QPointF(a, b), QPointF(-1.5, 20.0));
    }

    void textValues_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected"); // invalid: refused, and the console line gives the reason
        QTest::addColumn<QString>("reason");
        const QVariant refused;
        QTest::addRow("int at minimum, spaces") << "Count" << " -5 " << QVariant(-5) << "";
        // A float setting compares in float: as doubles, 0.01f lies below 0.01 and 1.1f above 1.1.
        QTest::addRow("float at minimum") << "Ratio" << "0.01" << QVariant(0.01f) << "";
        QTest::addRow("float at maximum") << "Ratio" << "1.1" << QVariant(1.1f) << "";
        QTest::addRow("bool upper") << "Flag" << "FALSE" << QVariant(false) << "";
        QTest::addRow("bool 1") << "Flag" << "1" << QVariant(true) << "";
        QTest::addRow("enum key any case") << "Choice" << "slow" << QVariant::fromValue(Sample::Slow) << "";
        QTest::addRow("enum number") << "Choice" << "0" << QVariant::fromValue(Sample::Off) << "";
        QTest::addRow("date-time") << "Stamp" << "2024-03-01T10:20:30"
                                   << QVariant(QDateTime(QDate(2024, 3, 1), QTime(10, 20, 30))) << "";
        QTest::addRow("point") << "Origin" << "3,4" << QVariant(QPoint(3, 4)) << "";
        QTest::addRow("size by x, spaced") << "Area" << " 640 x 480 " << QVariant(QSizeF(640, 480)) << "";
        QTest::addRow("text") << "Channels" << "a, b" << QVariant(QStringLiteral("a, b")) << "";

        QTest::addRow("above maximum") << "Count" << "101" << refused << "above the maximum 100";
        QTest::addRow("below minimum") << "Count" << "-6" << refused << "below the minimum -5";
        QTest::addRow("not a number") << "Count" << "abc" << refused << "not an integer";
        QTest::addRow("fraction for int") << "Count" << "1.5" << refused << "not an integer";
        QTest::addRow("beyond int") << "Count" << "99999999999" << refused << "outside the range";
        QTest::addRow("float above") << "Ratio" << "1.11" << refused << "above the maximum 1.1";
        QTest::addRow("nan") << "Ratio" << "nan" << refused << "not a number";
        QTest::addRow("bool yes") << "Flag" << "yes" << refused << "not a boolean";
        QTest::addRow("unknown enum key") << "Choice" << "Medium" << refused << "expected one of Off, Slow, Fast";
        QTest::addRow("unknown enum number") << "Choice" << "7" << refused << "expected one of";
        QTest::addRow("bad date") << "Stamp" << "yesterday" << refused << "not an ISO date-time";
        QTest::addRow("fractional point") << "Origin" << "1.5,2" << refused << "not a pair of integers";
        for (const char* pair : {"1", "1,2,3", "a,b", "QPoint(1,)", ""})
            QTest::addRow("not a pair: '%s'", pair) << "Area" << pair << refused << "not a pair of numbers";
    }

    void textValues()
    {
        QFETCH(QString, property);
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        QFETCH(QString, reason);
        MetaDescription* description = describe(property);
        const QVariant before = description->getValue();
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        QSignalSpy changed(description, &MetaDescription::valueChanged);
        QCOMPARE(description->setTextValue(text), expected.isValid());
        if (expected.isValid()) {
            QCOMPARE(description->getValue(), expected);
            // The text form reads back to the same value.
            QVERIFY(description->setTextValue(description->getValueText()));
            QCOMPARE(description->getValue(), expected);
            return;
        }
        QCOMPARE(description->getValue(), before);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(console.count(), 1);
        const QString line = console.first().first().toString();
        QVERIFY2(line.contains(property) && line.contains('"' + text + '"') && line.contains(reason),
                 qPrintable(line));
    }

    void setValueChecksTooAndSignals()
    {
        MetaDescription* count = describe("Count");
        QSignalSpy changed(count, &MetaDescription::valueChanged);
        QVERIFY(count->setValue(3));
        QVERIFY(count->setValue(4.0));
        QVERIFY(!count->setValue(200));
        QVERIFY(!count->setValue(2.5));
        QVERIFY(!count->setValue(QVariant()));
        QCOMPARE(m_sample.m_count, 4);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().first(), QVariant(4));

        MetaDescription* ratio = describe("Ratio");
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
        QTest::addColumn<QString>("expected"); // FastAndFlag, NoFlag, CountZeroOrNotSmall
        QTest::addRow("off, no flag, 0") << int(Sample::Off) << false << 0 << "011";
        QTest::addRow("slow, flag, 1") << int(Sample::Slow) << true << 1 << "000";
        QTest::addRow("fast, flag, 2") << int(Sample::Fast) << true << 2 << "100";
        QTest::addRow("fast, no flag, 5") << int(Sample::Fast) << false << 5 << "011";
    }

    void visibility()
    {
        QFETCH(int, mode);
        QFETCH(bool, flag);
        QFETCH(int, count);
        QFETCH(QString, expected);
        m_sample.m_mode = Sample::Mode(mode);
        m_sample.m_flag = flag;
        m_sample.m_count = count;
        const QStringList names = {"FastAndFlag", "NoFlag", "CountZeroOrNotSmall"};
        for (int i = 0; i < names.size(); ++i)
            QVERIFY2(describe(names[i])->isVisibleNow() == (expected[i] == '1'), qPrintable(names[i]));
        QVERIFY(describe("UnknownBound")->isVisibleNow());
    }

    void conditionParsing()
    {
        VisibilityCondition rate;
        QVERIFY(VisibilityCondition::parse(QStringLiteral(" Rate : 2.0 | ! 3 && !4 "), rate));
        QCOMPARE(rate.getPropertyName(), QStringLiteral("Rate"));
        QString holds;
        for (const char* value : {"2", "5", "3", "4.0"})
            holds += rate.holds(QLatin1String(value)) ? '1' : '0';
        QCOMPARE(holds, QStringLiteral("1100"));

        QString problem;
        const QList<VisibilityCondition> conditions =
            VisibilityCondition::parseList(QStringLiteral("A:1;;NoColon;:x;B:!;C:2&&|3"), &problem);
        QCOMPARE(conditions.size(), 1);
        QCOMPARE(conditions.first().getPropertyName(), QStringLiteral("A"));
        for (const char* piece : {"NoColon", "B:!", "C:2&&|3"})
            QVERIFY2(problem.contains(QLatin1String(piece)), piece);
    }
};

QTEST_GUILESS_MAIN(TestMetaDescription)
#include "tst_metadescription.moc"
