#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

// QJsonObject keeps its keys sorted; where clients read a documented key order, the object is
// written with these keys first, in this order, and any others after them.
class OrderedJson
{
public:
    static QByteArray serialize(const QJsonObject& object, const QStringList& keyOrder);
};
