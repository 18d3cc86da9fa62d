#include "server/WebSocketMessage.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QStringList>

WebSocketMessage WebSocketMessage::parse(const QString& message)
{
    WebSocketMessage parsed;
    if (message.startsWith(QLatin1Char('{'))) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(message.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError) {
            parsed.jsonError = error.errorString();
            return parsed;
        }
        const QJsonObject object = document.object();
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            const QString key = it.key().toLower();
            if (key == QLatin1String("command"))
                parsed.command = it.value().toString();
            else
                parsed.args.insert(key, it.value().toString());
        }
        return parsed;
    }
    if (!message.contains(QLatin1Char('?'))) {
        parsed.command = message;
        return parsed;
    }
    const QStringList parts = message.split(QLatin1Char('?'));
    if (parts.size() != 2)
        return parsed;
    parsed.command = parts[0];
    for (const QString& piece : parts[1].split(QLatin1Char('&'), Qt::SkipEmptyParts)) {
        const qsizetype equals = piece.indexOf(QLatin1Char('='));
        if (equals >= 0)
            parsed.args.insert(piece.left(equals), piece.mid(equals + 1));
    }
    return parsed;
}
