#pragma once

#include "server/ArgumentInfo.h"
#include "server/Referrer.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

class HTWSCommandCategory;

// One API command. The server finds it by name() and hands it the request's arguments and the
// reply to fill; the command adds its keys, sets "error" on failure and returns success.
class HTWSCommand : public QObject
{
    Q_OBJECT
public:
    explicit HTWSCommand(QObject* parent = nullptr, HTWSCommandCategory* category = nullptr);

    // The class name, lower-cased: the class ListDevices answers to "listdevices".
    virtual QString name();
    // A secret command stays off the reference page.
    virtual bool isSecret();
    virtual bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) = 0;
    // The body is ignored unless a command wants it.
    virtual bool processCommandWithBody(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args,
                                        QByteArray& body);
    virtual QString getDescription();
    virtual QMap<QString, QString> getArgumentDescriptions();
    virtual QMap<QString, QString> getReturnsDescriptions();

    static QString argumentCaseInsensitive(QMap<QString, QString>& args, QString& name, QString defaultValue);

    HTWSCommandCategory* category() const { return m_category; }
    void setCategory(HTWSCommandCategory* category) { m_category = category; }

protected:
    static QMap<QString, QString> createArgs(QList<ArgumentInfo>&& infos);
    // The value of the first of `names` present in args; sets "error" and returns an invalid
    // value when none is.
    static QVariant getAnyArgumentOrErrorIfNeeded(QStringList names, QString& foundName, QJsonObject& response,
                                                  QMap<QString, QString>& args);
    static void setError(QJsonObject& response, const QString& text);

private:
    HTWSCommandCategory* m_category;
};
