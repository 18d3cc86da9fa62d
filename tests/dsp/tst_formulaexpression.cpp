#include "dsp/FormulaExpression.h"
#include "services/GlobalConsole.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>

// The C++ compiler is the reference for precedence and associativity: each formula below is
// also compiled as C++, with these functions and variables standing in for the formula's own.
namespace reference {

double abs(double a) { return std::fabs(a); }

template <typename... Rest>
double min(double a, Rest... rest)
{
    double result = a;
    ((result = std::min(result, double(rest))), ...);
    return result;
}

template <typename... Rest>
double max(double a, Rest... rest)
{
    double result = a;
    ((result = std::max(result, double(rest))), ...);
    return result;
}

const double alpha_o1 = 3.5;
const double ALPHA_O2 = -1.25;
const double Concentration = 40.0;
const double meditation = 60.0;

#define FORMULA_ROW(expression) QTest::newRow(#expression) << QStringLiteral(#expression) << double(expression)

void addRows()
{
    FORMULA_ROW(2 - 3 - 4);
    FORMULA_ROW(2 * 3 + 4);
    FORMULA_ROW(2 + 3 * 4);
    FORMULA_ROW(2 - (3 - 4));
    FORMULA_ROW(8.0 / 4 / 2);
    FORMULA_ROW(10.0 / 4 * 2);
    FORMULA_ROW(-2 * 3 - -4);
    FORMULA_ROW(-(2 + 3) * 4);
    FORMULA_ROW(+3 - +2 * -3);
    FORMULA_ROW(2 * -3 / -0.5);
    FORMULA_ROW(1e3 * 2.5e-1 + .5 + 1. + 1.5E+1);
    FORMULA_ROW(((((1 + 2)) * ((3)))) - (((4))));
    FORMULA_ROW(min(3, 1, 2) + max(-1, -5, 0.5) * abs(-2.5));
    FORMULA_ROW(min(max(1, 2), abs(-3), 4) - max(min(4, alpha_o1), 2));
    FORMULA_ROW((alpha_o1 + ALPHA_O2) / 2 - Concentration);
    FORMULA_ROW(abs(ALPHA_O2) * -meditation / 3 + alpha_o1 * alpha_o1);
}

} // namespace reference

class TestFormulaExpression : public QObject
{
    Q_OBJECT

    // Keys spelled in other cases than the formulas use them.
    static QMap<QString, double> values()
    {
        return {{QStringLiteral("Alpha_O1"), reference::alpha_o1},
                {QStringLiteral("alpha_o2"), reference::ALPHA_O2},
                {QStringLiteral("concentration"), reference::Concentration},
                {QStringLiteral("MEDITATION"), reference::meditation}};
    }

private Q_SLOTS:
    void init() { GlobalConsole::FullOptimization = false; }

    void matchesCompiledArithmetic_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<double>("expected");
        reference::addRows();
    }

    void matchesCompiledArithmetic()
    {
        QFETCH(QString, formula);
        QFETCH(double, expected);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression(formula);
        QVERIFY2(expression.isValid(), qPrintable(expression.errorText()));
        QCOMPARE(expression.evaluate(values()), expected);
        QCOMPARE(console.count(), 0);
    }

    void namesAreCollectedLowerCased()
    {
        const FormulaExpression expression(QStringLiteral("Alpha + alpha * BETA_2 + min(x, ALPHA) + max"));
        QCOMPARE(expression.variableNames(),
                 QStringList({QStringLiteral("alpha"), QStringLiteral("beta_2"), QStringLiteral("x"),
                              QStringLiteral("max")}));
        // A function name not followed by "(" is an ordinary name.
        QCOMPARE(expression.evaluate({{QStringLiteral("alpha"), 2}, {QStringLiteral("beta_2"), 3},
                                      {QStringLiteral("x"), 1}, {QStringLiteral("max"), 10}}),
                 2 + 2 * 3 + 1 + 10.0);
    }

    void degenerateValuesCountAsZero()
    {
        QCOMPARE(FormulaExpression(QStringLiteral("7 + 1/0")).evaluate({}), 7.0);
        QCOMPARE(FormulaExpression(QStringLiteral("5 - 1/(x - x)")).evaluate({{QStringLiteral("x"), 2}}), 5.0);
        QCOMPARE(FormulaExpression(QStringLiteral("1e300 * 1e300 + 1")).evaluate({}), 1.0);
        QCOMPARE(FormulaExpression(QStringLiteral("x + 2")).evaluate({{QStringLiteral("x"), qQNaN()}}), 2.0);
        QCOMPARE(FormulaExpression(QStringLiteral("-x * 2")).evaluate({{QStringLiteral("x"), qInf()}}), 0.0);
    }

    void missingNameIsReportedOnce()
    {
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression(QStringLiteral("Gone * 3 + gone + 2"), QStringLiteral("focus"));
        QCOMPARE(expression.evaluate({}), 2.0);
        QCOMPARE(expression.evaluate({}), 2.0);
        QCOMPARE(console.count(), 1);
        const QString line = console.at(0).at(0).toString();
        QVERIFY2(line.contains(QStringLiteral("focus")) && line.contains(QStringLiteral("\"gone\"")), qPrintable(line));
        QCOMPARE(expression.evaluate({{QStringLiteral("GONE"), 1}}), 6.0);
    }

    void nestingIsBounded()
    {
        const int limit = FormulaExpression::MaxNesting;
        const auto nested = [](int levels) {
            return QString(levels, QLatin1Char('(')) + QStringLiteral("1") + QString(levels, QLatin1Char(')'));
        };
        QVERIFY(FormulaExpression(nested(limit)).isValid());
        QVERIFY(FormulaExpression(QString(limit, QLatin1Char('-')) + QStringLiteral("2")).isValid());
        // The deepest accepted shape that keeps the most values pending still evaluates.
        QString deep = QStringLiteral("1");
        for (int i = 0; i < limit; ++i)
            deep = QStringLiteral("1 + 1 * max(1, %1)").arg(deep);
        QCOMPARE(FormulaExpression(deep).evaluate({}), 1.0 + limit);
        QVERIFY(!FormulaExpression(nested(limit + 1)).isValid());
    }

    void malformedIsRefused_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<int>("position");
        const auto row = [](const char* name, const QString& formula, int position) {
            QTest::newRow(name) << formula << position;
        };
        row("empty", QString(), 1);
        row("blank", QStringLiteral("   "), 1);
        row("open only", QStringLiteral("("), 2);
        row("dangling plus", QStringLiteral("1+"), 3);
        row("min without arguments", QStringLiteral("min()"), 5);
        row("abs with two", QStringLiteral("abs(1,2)"), 6);
        row("two numbers", QStringLiteral("1 2"), 3);
        row("unknown function", QStringLiteral("foo("), 1);
        row("unclosed", QStringLiteral("1/(2"), 5);
        row("unclosed call", QStringLiteral("min(1,2"), 8);
        row("extra close", QStringLiteral("1 + 2)"), 6);
        row("double dot", QStringLiteral("1..2"), 3);
        row("power", QStringLiteral("-2^2"), 3);
        row("two operators", QStringLiteral("1+*2"), 3);
        row("empty argument", QStringLiteral("max(1,)"), 7);
        row("missing comma", QStringLiteral("max(1 2)"), 7);
        row("bare exponent", QStringLiteral("1e+"), 2);
        row("huge number", QStringLiteral("2 * 1e999"), 5);
        row("deep parentheses", QString(10000, QLatin1Char('(')) + QStringLiteral("1") + QString(10000, QLatin1Char(')')), 66);
        row("deep signs", QString(10000, QLatin1Char('-')) + QStringLiteral("1"), 66);
        row("bytes", QString::fromLatin1("\x01\xff\x7f#@"), 1);
        row("bytes after a number", QString::fromLatin1("12\xe9\x00\x1b", 5), 3);
    }

    void malformedIsRefused()
    {
        QFETCH(QString, formula);
        QFETCH(int, position);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression(formula);
        QVERIFY(!expression.isValid());
        QVERIFY2(expression.errorText().endsWith(QStringLiteral(" at character %1").arg(position)),
                 qPrintable(expression.errorText()));
        QCOMPARE(console.count(), 1);
        QVERIFY(console.at(0).at(0).toString().contains(expression.errorText()));
        QVERIFY(expression.variableNames().isEmpty());
        QCOMPARE(expression.evaluate(values()), 0.0);
    }

    // Random input must be accepted or refused, never crash; accepted formulas evaluate finite.
    // Half are strings of the formula alphabet, half grammatical formulas (some nested past
    // the limit), of which half get a few characters inserted, deleted or replaced.
    void randomInputNeverCrashes()
    {
        QRandomGenerator random(20240611);
        const QMap<QString, double> known{{QStringLiteral("x"), 1e200}, {QStringLiteral("alpha_1"), -3}};
        GlobalConsole::FullOptimization = true; // thousands of refusals would flood the output
        int accepted = 0;
        for (int round = 0; round < 4000; ++round) {
            const bool grammatical = round % 2 == 1;
            QString text = grammatical ? randomFormula(random, 0) : QString();
            const bool mutated = !grammatical || random.bounded(2) == 0;
            if (mutated)
                mutate(random, text, grammatical ? random.bounded(1, 4) : random.bounded(1, 40));
            const FormulaExpression expression(text);
            QVERIFY2(std::isfinite(expression.evaluate(known)), qPrintable(text));
            if (expression.isValid()) {
                ++accepted;
                continue;
            }
            const QString error = expression.errorText();
            QVERIFY2(error.contains(QStringLiteral(" at character ")), qPrintable(text));
            if (grammatical && !mutated)
                QVERIFY2(error.startsWith(QStringLiteral("nesting deeper")), qPrintable(text + QLatin1Char(' ') + error));
        }
        GlobalConsole::FullOptimization = false;
        QVERIFY(accepted > 1000);
    }

private:
    // Mostly leaves, so the expected size stays small; deep wraps sometimes cross the limit.
    static QString randomFormula(QRandomGenerator& random, int depth)
    {
        const auto sub = [&] { return randomFormula(random, depth + 1); };
        switch (random.bounded(depth > 70 ? 3 : 13)) {
        case 0: return QStringLiteral("%1e%2").arg(random.bounded(1, 10)).arg(random.bounded(-300, 300));
        case 1: return QLatin1String(random.bounded(2) ? "x" : "Missing");
        case 3: return QLatin1Char('(') + sub() + QLatin1Char(')');
        case 4: return QLatin1Char('-') + sub();
        case 5: return sub() + QLatin1Char("+-*/"[random.bounded(4)]) + sub();
        case 6: return QStringLiteral("min(%1, %2)").arg(sub(), sub());
        case 7: return QStringLiteral("MAX(%1,%2,%3)").arg(sub(), sub(), sub());
        case 8: return QStringLiteral("abs( %1 )").arg(sub());
        case 9: {
            const int levels = random.bounded(1, 40);
            return QString(levels, QLatin1Char('(')) + sub() + QString(levels, QLatin1Char(')'));
        }
        default: return QString::number(random.bounded(2000) / 8.0 - 50);
        }
    }

    static void mutate(QRandomGenerator& random, QString& text, int edits)
    {
        static const QString alphabet = QStringLiteral("0123456789.eE+-*/(),\t _xminabs^%");
        for (; edits > 0; --edits) {
            const int at = random.bounded(int(text.size()) + 1);
            const QChar c = alphabet.at(random.bounded(int(alphabet.size())));
            switch (random.bounded(3)) {
            case 0: text.insert(at, c); break;
            case 1: text.remove(at, 1); break;
            default: text.replace(at, 1, c); break;
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestFormulaExpression)
#include "tst_formulaexpression.moc"
