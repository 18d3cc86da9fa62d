#pragma once

#include <QMap>
#include <QString>

// Reads a WebSocket command message: a JSON object {"command": ..., "<arg>": "..."} (keys
// lower-cased, non-string values read as ""), or "command" / "command?key=value&...".
//
// Unlike HTTP addresses (UrlArguments), the text form is taken as written: no percent or '+'
// decoding, keys keep their case, a piece without '=' is dropped, and a message with more than
// one '?' has no command. Clients of the WebSocket port send exactly that, so decoding would
// change their arguments.
class WebSocketMessage
{
public:
    QString command;               // empty when none could be read
    QMap<QString, QString> args;
    QString jsonError;             // why a message starting with '{' is not JSON

    static WebSocketMessage parse(const QString& message);
};
