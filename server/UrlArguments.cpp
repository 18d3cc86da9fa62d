#include "server/UrlArguments.h"

namespace {

// -1 for anything but a hexadecimal digit.
int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

QMap<QString, QString> UrlArguments::parse(const QString& pathOrQuery)
{
    const qsizetype question = pathOrQuery.indexOf(QLatin1Char('?'));
    QMap<QString, QString> arguments;
    if (question < 0 && !pathOrQuery.contains(QLatin1Char('=')))
        return arguments;
    const QString query = question < 0 ? pathOrQuery : pathOrQuery.mid(question + 1);
    const QStringList pieces = query.split(QLatin1Char('&'), Qt::SkipEmptyParts);
    for (const QString& piece : pieces) {
        const qsizetype equals = piece.indexOf(QLatin1Char('='));
        const QString key = decode(equals < 0 ? piece : piece.left(equals));
        if (key.isEmpty())
            continue;
        arguments.insert(key, equals < 0 ? QString() : decode(piece.mid(equals + 1)));
    }
    return arguments;
}

QString UrlArguments::decode(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QByteArray decoded;
    decoded.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        const int high = c == '%' && i + 2 < bytes.size() ? hexValue(bytes[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(bytes[i + 2]) : -1;
        if (low >= 0) {
            decoded += char(high * 16 + low);
            i += 2;
        } else {
            decoded += c == '+' ? ' ' : c;
        }
    }
    return QString::fromUtf8(decoded);
}
