#include "dsp/FormulaExpression.h"

#include "services/GlobalConsole.h"

#include <cmath>

namespace {

double finiteOrZero(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

bool isAsciiDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool startsName(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool continuesName(QChar c)
{
    return c.isLetter() || c.isDigit() || c == QLatin1Char('_');
}

// The formula as it may appear in a console line: bounded, and without control characters.
QString printable(const QString& text)
{
    constexpr int maxLength = 80;
    QString shown = text.size() > maxLength ? text.left(maxLength - 3) + QStringLiteral("...") : text;
    for (QChar& c : shown) {
        if (!c.isPrint())
            c = QLatin1Char('?');
    }
    return shown;
}

} // namespace

// Recursive descent over tokens read on demand; emits postfix code into the expression.
// The first error wins; every parse function returns false once anything failed.
class FormulaParser
{
public:
    FormulaParser(const QString& text, FormulaExpression& target)
        : m_text(text)
        , m_target(target)
    {
    }

    bool run()
    {
        if (m_text.trimmed().isEmpty())
            return fail(QStringLiteral("empty formula"), 0);
        next();
        if (!parseExpression())
            return false;
        if (m_token != Token::End)
            return fail(QStringLiteral("expected an operator but found %1").arg(describeToken()), m_start);
        if (m_maxStack > FormulaExpression::StackCapacity)
            return fail(QStringLiteral("formula too complex"), 0);
        return true;
    }

    QString error() const { return m_error; }

private:
    using OpCode = FormulaExpression::OpCode;
    enum class Token { End, Number, Name, Plus, Minus, Star, Slash, Open, Close, Comma, Bad };

    bool fail(const QString& what, int index)
    {
        if (m_error.isEmpty())
            m_error = QStringLiteral("%1 at character %2").arg(what, QString::number(index + 1));
        return false;
    }

    QString describeToken() const
    {
        if (m_token == Token::End)
            return QStringLiteral("the end of the formula");
        constexpr int maxShown = 20;
        const int length = m_end - m_start;
        const QString shown = length > maxShown ? m_text.mid(m_start, maxShown) + QStringLiteral("...")
                                                : m_text.mid(m_start, length);
        return QLatin1Char('"') + shown + QLatin1Char('"');
    }

    // Reads the token at m_end into m_token/m_start/m_end (and m_number or m_name).
    void next()
    {
        int i = m_end;
        while (i < m_text.size() && m_text.at(i).isSpace())
            ++i;
        m_start = i;
        m_end = i + 1;
        if (i >= m_text.size()) {
            m_token = Token::End;
            m_end = i;
            return;
        }
        const QChar c = m_text.at(i);
        if (isAsciiDigit(c) || (c == QLatin1Char('.') && i + 1 < m_text.size() && isAsciiDigit(m_text.at(i + 1))))
            return readNumber();
        if (startsName(c))
            return readName();
        switch (c.unicode()) {
        case '+': m_token = Token::Plus; return;
        case '-': m_token = Token::Minus; return;
        case '*': m_token = Token::Star; return;
        case '/': m_token = Token::Slash; return;
        case '(': m_token = Token::Open; return;
        case ')': m_token = Token::Close; return;
        case ',': m_token = Token::Comma; return;
        default: break;
        }
        m_token = Token::Bad;
        const QString shown = c.isPrint() ? QStringLiteral("'%1'").arg(c)
                                          : QStringLiteral("U+%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        fail(QStringLiteral("unexpected character %1").arg(shown), i);
    }

    int skipDigits(int i) const
    {
        while (i < m_text.size() && isAsciiDigit(m_text.at(i)))
            ++i;
        return i;
    }

    void readNumber()
    {
        int i = skipDigits(m_start);
        if (i < m_text.size() && m_text.at(i) == QLatin1Char('.'))
            i = skipDigits(i + 1);
        if (i < m_text.size() && (m_text.at(i) == QLatin1Char('e') || m_text.at(i) == QLatin1Char('E'))) {
            int exponent = i + 1;
            if (exponent < m_text.size() && (m_text.at(exponent) == QLatin1Char('+') || m_text.at(exponent) == QLatin1Char('-')))
                ++exponent;
            const int end = skipDigits(exponent);
            if (end == exponent) {
                m_token = Token::Bad;
                fail(QStringLiteral("exponent without digits"), i);
                return;
            }
            i = end;
        }
        m_end = i;
        bool ok = false;
        m_number = QStringView(m_text).mid(m_start, i - m_start).toDouble(&ok);
        if (!ok || !std::isfinite(m_number)) {
            m_token = Token::Bad;
            fail(QStringLiteral("number out of range"), m_start);
            return;
        }
        m_token = Token::Number;
    }

    void readName()
    {
        int i = m_start + 1;
        while (i < m_text.size() && continuesName(m_text.at(i)))
            ++i;
        m_end = i;
        m_name = m_text.mid(m_start, i - m_start).toLower();
        m_token = Token::Name;
    }

    void emitOp(OpCode code, int stackChange, double value = 0, int index = 0)
    {
        m_target.m_code.push_back({code, index, value});
        m_stack += stackChange;
        m_maxStack = std::max(m_maxStack, m_stack);
    }

    void emitVariable(const QString& name)
    {
        int index = m_target.m_variables.indexOf(name);
        if (index < 0) {
            index = int(m_target.m_variables.size());
            m_target.m_variables.append(name);
        }
        emitOp(OpCode::Variable, 1, 0, index);
    }

    bool parseExpression()
    {
        if (!parseTerm())
            return false;
        while (m_token == Token::Plus || m_token == Token::Minus) {
            const OpCode code = m_token == Token::Plus ? OpCode::Add : OpCode::Subtract;
            next();
            if (!parseTerm())
                return false;
            emitOp(code, -1);
        }
        return m_error.isEmpty();
    }

    bool parseTerm()
    {
        if (!parseUnary())
            return false;
        while (m_token == Token::Star || m_token == Token::Slash) {
            const OpCode code = m_token == Token::Star ? OpCode::Multiply : OpCode::Divide;
            next();
            if (!parseUnary())
                return false;
            emitOp(code, -1);
        }
        return m_error.isEmpty();
    }

    // Every parenthesis, call and sign passes through here, so this is where depth is bounded.
    bool parseUnary()
    {
        if (m_depth > FormulaExpression::MaxNesting)
            return fail(QStringLiteral("nesting deeper than %1 levels").arg(FormulaExpression::MaxNesting), m_start);
        ++m_depth;
        bool ok = false;
        if (m_token == Token::Plus) {
            next();
            ok = parseUnary();
        } else if (m_token == Token::Minus) {
            next();
            ok = parseUnary();
            if (ok)
                emitOp(OpCode::Negate, 0);
        } else {
            ok = parsePrimary();
        }
        --m_depth;
        return ok;
    }

    bool parsePrimary()
    {
        if (m_token == Token::Number) {
            emitOp(OpCode::Number, 1, m_number);
            next();
            return true;
        }
        if (m_token == Token::Name) {
            const QString name = m_name;
            const int position = m_start;
            next();
            if (m_token == Token::Open)
                return parseCall(name, position);
            emitVariable(name);
            return true;
        }
        if (m_token == Token::Open) {
            next();
            return parseExpression() && expectClose();
        }
        return fail(QStringLiteral("expected a number, a name or \"(\" but found %1").arg(describeToken()), m_start);
    }

    bool expectClose()
    {
        if (m_token != Token::Close)
            return fail(QStringLiteral("expected \")\" but found %1").arg(describeToken()), m_start);
        next();
        return true;
    }

    // min and max fold their arguments pairwise, which keeps the evaluation stack shallow.
    bool parseCall(const QString& name, int position)
    {
        OpCode code;
        if (name == QLatin1String("min"))
            code = OpCode::Min;
        else if (name == QLatin1String("max"))
            code = OpCode::Max;
        else if (name == QLatin1String("abs"))
            code = OpCode::Abs;
        else
            return fail(QStringLiteral("unknown function \"%1\"").arg(name), position);
        next(); // "("
        if (m_token == Token::Close)
            return fail(QStringLiteral("%1() needs an argument").arg(name), m_start);
        if (!parseExpression())
            return false;
        while (m_token == Token::Comma) {
            if (code == OpCode::Abs)
                return fail(QStringLiteral("abs() takes one argument"), m_start);
            next();
            if (!parseExpression())
                return false;
            emitOp(code, -1);
        }
        if (code == OpCode::Abs)
            emitOp(code, 0);
        return expectClose();
    }

    const QString& m_text;
    FormulaExpression& m_target;
    QString m_error;
    Token m_token = Token::End;
    int m_start = 0;
    int m_end = 0;
    double m_number = 0;
    QString m_name;
    int m_depth = 0;
    int m_stack = 0;
    int m_maxStack = 0;
};

FormulaExpression::FormulaExpression() = default;

FormulaExpression::FormulaExpression(const QString& text, const QString& owner)
    : m_text(text)
    , m_owner(owner)
{
    FormulaParser parser(m_text, *this);
    m_valid = parser.run();
    if (!m_valid) {
        m_error = parser.error();
        m_code.clear();
        m_variables.clear();
        report(QStringLiteral("refused: %1").arg(m_error));
    }
    m_missingReported.assign(size_t(m_variables.size()), false);
}

double FormulaExpression::evaluate(const QMap<QString, double>& values) const
{
    if (!m_valid)
        return 0.0;
    double stack[StackCapacity];
    int top = 0; // number of values on the stack
    for (const Op& op : m_code) {
        switch (op.code) {
        case OpCode::Number:
            stack[top++] = op.value;
            break;
        case OpCode::Variable:
            stack[top++] = lookup(op.index, values);
            break;
        case OpCode::Negate:
            stack[top - 1] = -stack[top - 1];
            break;
        case OpCode::Abs:
            stack[top - 1] = std::fabs(stack[top - 1]);
            break;
        default: {
            const double right = stack[--top];
            double& left = stack[top - 1];
            switch (op.code) {
            case OpCode::Add: left += right; break;
            case OpCode::Subtract: left -= right; break;
            case OpCode::Multiply: left *= right; break;
            case OpCode::Divide: left = right == 0.0 ? 0.0 : left / right; break;
            case OpCode::Min: left = std::min(left, right); break;
            case OpCode::Max: left = std::max(left, right); break;
            default: break;
            }
            left = finiteOrZero(left);
            break;
        }
        }
    }
    return top == 1 ? finiteOrZero(stack[0]) : 0.0;
}

double FormulaExpression::lookup(int variable, const QMap<QString, double>& values) const
{
    const QString& name = m_variables.at(variable);
    auto found = values.constFind(name);
    if (found == values.cend()) {
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            if (it.key().compare(name, Qt::CaseInsensitive) == 0) {
                found = it;
                break;
            }
        }
    }
    if (found != values.cend())
        return finiteOrZero(found.value());
    if (!m_missingReported[size_t(variable)]) {
        m_missingReported[size_t(variable)] = true;
        report(QStringLiteral("has no value for \"%1\"; it counts as 0").arg(name));
    }
    return 0.0;
}

void FormulaExpression::report(const QString& what) const
{
    if (m_owner.isEmpty())
        GlobalConsole::writeLine(QStringLiteral("Formula \"%1\" %2").arg(printable(m_text), what));
    else
        GlobalConsole::writeLine(QStringLiteral("%1: formula \"%2\" %3").arg(m_owner, printable(m_text), what));
}
