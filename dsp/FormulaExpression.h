#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

// A small arithmetic formula over named values, e.g. "(alpha_o1 + alpha_o2) / 2 - concentration".
// Parsed once at construction (recursive descent into postfix code); evaluated without any
// allocation. Grammar and rules are in docs/custom-algorithms.md. In short:
//   numbers (1, 2.5, .5, 1e-3), + - * /, parentheses, unary - and +, min(a, ...), max(a, ...),
//   abs(a), and names (letters, digits, underscore; not starting with a digit; any case).
// A malformed formula is refused with one console line and then always evaluates to 0.
// Evaluation never fails: division by zero, a non-finite intermediate value and a name missing
// from the supplied values each count as 0 (a missing name is reported once per expression).
// Not thread-safe: the once-only reports are remembered inside the object.
class FormulaExpression
{
public:
    // Parentheses, function calls and unary signs nested deeper than this are refused, so
    // hostile input cannot exhaust the parser's stack.
    static constexpr int MaxNesting = 64;

    // An empty, invalid expression; reports nothing.
    FormulaExpression();
    // Parses text; a malformed text is reported on the console and leaves the expression
    // invalid. owner, when given, starts the expression's console lines (an algorithm's name).
    explicit FormulaExpression(const QString& text, const QString& owner = QString());

    bool isValid() const { return m_valid; }
    QString getText() const { return m_text; }
    // What is wrong and at which character (1-based); empty when valid.
    QString errorText() const { return m_error; }
    // Distinct names the formula reads, lower-cased, in order of first appearance.
    QStringList variableNames() const { return m_variables; }

    // Names are looked up without regard to case. Always finite; 0 when invalid.
    double evaluate(const QMap<QString, double>& values) const;

private:
    friend class FormulaParser;

    enum class OpCode : quint8 { Number, Variable, Add, Subtract, Multiply, Divide, Negate, Min, Max, Abs };
    struct Op
    {
        OpCode code = OpCode::Number;
        int index = 0;     // variable index
        double value = 0;  // number literal
    };

    // Room for the evaluation stack. Each nesting level keeps at most three pending values
    // (a sum's left side, a product's left side, a function's previous arguments) because
    // min and max are folded pairwise; the parser checks the bound anyway.
    static constexpr int StackCapacity = 3 * MaxNesting + 8;

    double lookup(int variable, const QMap<QString, double>& values) const;
    void report(const QString& what) const;

    QString m_text;
    QString m_owner;
    bool m_valid = false;
    QString m_error;
    QStringList m_variables;
    std::vector<Op> m_code;
    mutable std::vector<bool> m_missingReported; // per variable
};
