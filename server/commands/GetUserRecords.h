#pragma once

#include "server/DataServerCommand.h"

// The recordings in the records folder with who made them, when and with which device, as
// their logs tell; a record without a log carries what its file name tells.
class GetUserRecords : public DataServerCommand
{
    Q_OBJECT
public:
    explicit GetUserRecords(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

    // The first value of each of `keys` in a record log ("ms<TAB>key<TAB>value" lines).
    static QMap<QString, QString> readLog(const QString& path, const QStringList& keys);
};
