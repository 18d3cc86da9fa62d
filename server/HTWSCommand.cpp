#include "server/HTWSCommand.h"

#include <QMetaObject>

HTWSCommand::HTWSCommand(QObject* parent, HTWSCommandCategory* category)
    : QObject(parent)
    , m_category(category)
{
}

QString HTWSCommand::name()
{
    return QString::fromLatin1(metaObject()->className()).toLower();
}

bool HTWSCommand::isSecret()
{
    return false;
}

bool HTWSCommand::processCommandWithBody(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args,
                                         QByteArray& body)
{
    Q_UNUSED(body)
    return processCommand(referrer, response, args);
}

QString HTWSCommand::getDescription()
{
    return QString();
}

QMap<QString, QString> HTWSCommand::getArgumentDescriptions()
{
    return {};
}

QMap<QString, QString> HTWSCommand::getReturnsDescriptions()
{
    return {};
}

QString HTWSCommand::argumentCaseInsensitive(QMap<QString, QString>& args, QString& name, QString defaultValue)
{
    for (auto it = args.cbegin(); it != args.cend(); ++it) {
        if (it.key().compare(name, Qt::CaseInsensitive) == 0)
            return it.value();
    }
    return defaultValue;
}

QMap<QString, QString> HTWSCommand::createArgs(QList<ArgumentInfo>&& infos)
{
    QMap<QString, QString> map;
    for (const ArgumentInfo& info : infos)
        map.insert(info.name, info.description);
    return map;
}

QVariant HTWSCommand::getAnyArgumentOrErrorIfNeeded(QStringList names, QString& foundName, QJsonObject& response,
                                                    QMap<QString, QString>& args)
{
    for (const QString& name : names) {
        auto it = args.constFind(name);
        if (it != args.cend()) {
            foundName = name;
            return it.value();
        }
    }
    QStringList quoted;
    for (const QString& name : names)
        quoted << QLatin1Char('\'') + name + QLatin1Char('\'');
    setError(response, QStringLiteral("Please specify any of ") + quoted.join(QStringLiteral(" or "))
                           + QStringLiteral(" as an argument"));
    return QVariant();
}

void HTWSCommand::setError(QJsonObject& response, const QString& text)
{
    response.insert(QStringLiteral("error"), text);
}
