#pragma once

#include <QMap>
#include <QString>

// Reads the arguments of a request address into a string map.
//
// The query is the text after the first '?'. A text without '?' is a path (no arguments) unless
// it holds an '=', in which case it is taken as a bare query. The query is split
// at '&', empty pieces dropped; each piece is split at its first '=' into key and value, and a
// piece without '=' is a key with an empty value ("?pretty" asks for pretty output as well as
// "?pretty=1"). Keys and values are form-decoded: '+' stands for a space and %XX sequences
// are decoded as UTF-8 (so "%2B" is a literal '+'); malformed sequences stay as written.
// Keys keep their case. A key given twice keeps its last value.
class UrlArguments
{
public:
    static QMap<QString, QString> parse(const QString& pathOrQuery);

    // '+' as space, then percent-decoding.
    static QString decode(const QString& text);
};
