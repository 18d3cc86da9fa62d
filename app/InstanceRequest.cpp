#include "app/InstanceRequest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {
QByteArray toJsonLine(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}
} // namespace

InstanceRequest InstanceRequest::activate(const QStringList& arguments, const QString& from)
{
    InstanceRequest request;
    request.m_kind = Kind::Activate;
    request.m_arguments = arguments;
    request.m_from = from;
    return request;
}

InstanceRequest InstanceRequest::close(const QString& from)
{
    InstanceRequest request;
    request.m_kind = Kind::Close;
    request.m_from = from;
    return request;
}

InstanceRequest InstanceRequest::invalid(const QString& error)
{
    InstanceRequest request;
    request.m_error = error;
    return request;
}

InstanceRequest InstanceRequest::fromLine(const QByteArray& line)
{
    if (line.size() > MaxLineBytes)
        return invalid(QStringLiteral("request too long"));
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line.trimmed(), &parseError);
    if (!document.isObject())
        return invalid(QStringLiteral("not a JSON object"));
    const QJsonObject object = document.object();
    const QString from = object.value(QStringLiteral("from")).toString();
    const QString name = object.value(QStringLiteral("request")).toString();
    if (name == QLatin1String("close"))
        return close(from);
    if (name != QLatin1String("activate"))
        return invalid(QStringLiteral("unknown request \"%1\"").arg(name.left(40)));

    const QJsonValue arguments = object.value(QStringLiteral("arguments"));
    if (!arguments.isArray() && !arguments.isUndefined())
        return invalid(QStringLiteral("arguments must be a list of strings"));
    QStringList list;
    for (const QJsonValue& argument : arguments.toArray()) {
        if (!argument.isString())
            return invalid(QStringLiteral("arguments must be a list of strings"));
        list.append(argument.toString());
    }
    return activate(list, from);
}

QByteArray InstanceRequest::toLine() const
{
    QJsonObject object;
    object.insert(QStringLiteral("request"),
                  m_kind == Kind::Close ? QStringLiteral("close") : QStringLiteral("activate"));
    if (m_kind == Kind::Activate)
        object.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(m_arguments));
    if (!m_from.isEmpty())
        object.insert(QStringLiteral("from"), m_from);
    return toJsonLine(object);
}

QByteArray InstanceRequest::answerLine(bool ok, const QString& error)
{
    QJsonObject object{ { QStringLiteral("ok"), ok } };
    if (!error.isEmpty())
        object.insert(QStringLiteral("error"), error);
    return toJsonLine(object);
}

bool InstanceRequest::answerIsOk(const QByteArray& line, QString* error)
{
    const QJsonObject object = QJsonDocument::fromJson(line.trimmed()).object();
    const bool ok = object.value(QStringLiteral("ok")).toBool(false);
    if (!ok && error) {
        *error = object.value(QStringLiteral("error")).toString();
        if (error->isEmpty())
            *error = QStringLiteral("no valid answer");
    }
    return ok;
}
