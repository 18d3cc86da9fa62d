#include "dsp/FormulaExpression.h"
#include "services/GlobalConsole.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <cmath>

// The C++ compiler is the reference for precedence and associativity: each formula below is
// also compiled as C++, with these functions and variables standing in for the formula's own.
namespace reference {

double abs(double a) { return std::fabs(a); }
template <typename... T> double min(T... v) { return std::min({double(v)...}); }
template <typename... T> double max(T... v) { return std::max({double(v)...}); }
const double alpha_o1 = 3.5, ALPHA_O2 = -1.25, Concentration = 40.0, meditation = 60.0;

#define FORMULA_ROW(expression) QTest::newRow(#expression) << QStringLiteral(#expression) << double(expression)

void addRows()
{
    FORMULA_ROW(2 - 3 - 4);
    FORMULA_ROW(2 * 3 + 4);
    FORMULA_ROW(2 + 3 * 4);
    FORMULA_ROW(2 - (3 - 4));
    FORMULA_ROW(8.0 / 4 / 2);
    FORMULA_ROW(10.0 / 4 * 2);
    FORMULA_ROW(-(2 + 3) * 4);
    FORMULA_ROW(+3 - +2 * -3);
    FORMULA_ROW(2 * -3 / -0.5);
    FORMULA_ROW(1e3 * 2.5e-1 + .5 + 1. + 1.5E+1);
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
        return {{"Alpha_O1", reference::alpha_o1}, {"alpha_o2", reference::ALPHA_O2},
                {"concentration", reference::Concentration}, {"MEDITATION", reference::meditation},
                {"two", 2}, {"nan_value", qQNaN()}, {"inf_value", qInf()}};
    }

private Q_SLOTS:
    void init() { GlobalConsole::FullOptimization = false; }

    void evaluates_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<double>("expected");
        reference::addRows();
        // Degenerate values count as 0.
        QTest::newRow("division by zero") << "7 + 1/0" << 7.0;
        QTest::newRow("zero divisor from names") << "5 - 1/(two - two)" << 5.0;
        QTest::newRow("overflow") << "1e300 * 1e300 + 1" << 1.0;
        QTest::newRow("NaN value") << "nan_value + 2" << 2.0;
        QTest::newRow("infinite value") << "-inf_value * 2" << 0.0;
        // The nesting limit itself is accepted (one level more is refused, see below), also in
        // the shape that keeps the most values pending.
        const int limit = FormulaExpression::MaxNesting;
        QTest::newRow("deepest parentheses") << QString(limit, '(') + "1" + QString(limit, ')') << 1.0;
        QTest::newRow("deepest signs") << QString(limit, '-') + "2" << 2.0;
        QString deep = "1";
        for (int i = 0; i < limit; ++i)
            deep = QString("1 + 1 * max(1, %1)").arg(deep);
        QTest::newRow("deepest pending values") << deep << 1.0 + limit;
    }

    void evaluates()
    {
        QFETCH(QString, formula);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression(formula);
        QVERIFY2(expression.isValid(), qPrintable(expression.errorText()));
        QTEST(expression.evaluate(values()), "expected");
        QCOMPARE(console.count(), 0);
    }

    // Names are collected lower-cased; a missing one counts as 0 and is reported once.
    void names()
    {
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression("Alpha + alpha * BETA_2 + min(x, ALPHA) + max - Gone * 3 + gone", "focus");
        QCOMPARE(expression.variableNames(), QStringList({"alpha", "beta_2", "x", "max", "gone"}));
        // A function name not followed by "(" is an ordinary name.
        QMap<QString, double> some{{"alpha", 2}, {"beta_2", 3}, {"x", 1}, {"max", 10}};
        QCOMPARE(expression.evaluate(some), 2 + 2 * 3 + 1 + 10.0);
        QCOMPARE(expression.evaluate(some), 19.0);
        QCOMPARE(console.count(), 1);
        const QString line = console.at(0).at(0).toString();
        QVERIFY2(line.contains("focus") && line.contains("\"gone\""), qPrintable(line));
        some.insert("GONE", 1);
        QCOMPARE(expression.evaluate(some), 19.0 - 3 + 1);
    }

    void malformedIsRefused_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<int>("position"); // of the fault, counted from 1
        QTest::newRow("empty") << QString() << 1;
        QTest::newRow("open only") << "(" << 2;
        QTest::newRow("min without arguments") << "min()" << 5;
        QTest::newRow("abs with two") << "abs(1,2)" << 6;
        QTest::newRow("two numbers") << "1 2" << 3;
        QTest::newRow("unknown function") << "foo(" << 1;
        QTest::newRow("unclosed") << "1/(2" << 5;
        QTest::newRow("double dot") << "1..2" << 3;
        QTest::newRow("power") << "-2^2" << 3;
        QTest::newRow("two operators") << "x+*2" << 3;
        QTest::newRow("empty argument") << "max(1,)" << 7;
        QTest::newRow("missing comma") << "max(1 2)" << 7;
        QTest::newRow("bare exponent") << "1e+" << 2;
        QTest::newRow("huge number") << "2 * 1e999" << 5;
        // Refused one level past the limit (character 66), however deep the input goes.
        QTest::newRow("deep parentheses") << QString(10000, '(') + "1" + QString(10000, ')') << 66;
        QTest::newRow("deep signs") << QString(10000, '-') + "1" << 66;
        QTest::newRow("bytes") << QString::fromLatin1("\x01\xff\x7f#@") << 1;
        QTest::newRow("bytes after a number") << QString::fromLatin1("12\xe9\x00\x1b", 5) << 3;
    }

    void malformedIsRefused()
    {
        QFETCH(QString, formula);
        QFETCH(int, position);
        QSignalSpy console(GlobalConsole::Instance(), &GlobalConsole::newEntry);
        const FormulaExpression expression(formula);
        QVERIFY(!expression.isValid());
        QVERIFY2(expression.errorText().endsWith(QString(" at character %1").arg(position)),
                 qPrintable(expression.errorText()));
        QCOMPARE(console.count(), 1);
        QVERIFY(console.at(0).at(0).toString().contains(expression.errorText()));
        QVERIFY(expression.variableNames().isEmpty());
        QCOMPARE(expression.evaluate(values()), 0.0);
    }

    // Random input must be accepted or refused, never crash; accepted formulas evaluate finite.
    // Grammatical formulas (some nested past the limit, the only reason to refuse them), and
    // every other one with characters inserted, deleted or replaced at random places.
    void randomInputNeverCrashes()
    {
        QRandomGenerator random(20240611);
        const QMap<QString, double> known{{"x", 1e200}, {"alpha_1", -3}};
        const QString alphabet = "0123456789.eE+-*/(),\t _xminabs^%";
        GlobalConsole::FullOptimization = true; // thousands of refusals would flood the output
        int accepted = 0;
        for (int round = 0; round < 4000; ++round) {
            QString text = randomFormula(random, 0);
            for (int edits = round % 2 ? random.bounded(1, 40) : 0; edits > 0; --edits) {
                const int at = random.bounded(int(text.size()) + 1), edit = random.bounded(3);
                const QChar c = alphabet.at(random.bounded(int(alphabet.size())));
                text.replace(at, edit == 0 ? 0 : 1, edit == 1 ? QString() : QString(c));
            }
            const FormulaExpression expression(text);
            QVERIFY2(std::isfinite(expression.evaluate(known)), qPrintable(text));
            const QString error = expression.errorText();
            accepted += expression.isValid();
            QVERIFY2(expression.isValid() || (error.contains(" at character ") && (round % 2 || error.startsWith("nesting deeper"))),
                     qPrintable(text + ' ' + error));
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
        case 0: return QString("%1e%2").arg(random.bounded(1, 10)).arg(random.bounded(-300, 300));
        case 1: return random.bounded(2) ? "x" : "Missing";
        case 3: return '(' + sub() + ')';
        case 4: return '-' + sub();
        case 5: return sub() + "+-*/"[random.bounded(4)] + sub();
        case 6: return QString("min(%1, %2)").arg(sub(), sub());
        case 7: return QString("MAX(%1,%2,%3)").arg(sub(), sub(), sub());
        case 8: return QString("abs( %1 )").arg(sub());
        case 9: { const int levels = random.bounded(1, 40); return QString(levels, '(') + sub() + QString(levels, ')'); }
        default: return QString::number(random.bounded(2000) / 8.0 - 50);
        }
    }
};

QTEST_GUILESS_MAIN(TestFormulaExpression)
#include "tst_formulaexpression.moc"
