#include "services/OrderedJson.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {
QByteArray valueText(const QJsonValue& value)
{
    // A lone value is written by writing a one-element array and dropping the brackets.
    const QByteArray array = QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}
}

QByteArray OrderedJson::serialize(const QJsonObject& object, const QStringList& keyOrder)
{
    QStringList keys;
    for (const QString& key : keyOrder) {
        if (object.contains(key))
            keys.append(key);
    }
    for (const QString& key : object.keys()) {
        if (!keys.contains(key))
            keys.append(key);
    }
    QByteArray text("{");
    for (const QString& key : std::as_const(keys)) {
        if (text.size() > 1)
            text += ',';
        text += valueText(key) + ':' + valueText(object.value(key));
    }
    return text + '}';
}
