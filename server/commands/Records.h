#pragma once

#include "server/DataServerCommand.h"

class RecordsFolder;

// The recordings in the records folder: list them, fetch a record's files, remove a file or
// write one. Every path stays inside the records folder.
class Records : public DataServerCommand
{
    Q_OBJECT
public:
    explicit Records(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args) override;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;

private:
    bool listRecords(const RecordsFolder& folder, QJsonObject& response);
    bool getRecord(const RecordsFolder& folder, const QString& path, const QString& extensions,
                   QJsonObject& response);
    bool removeFile(const RecordsFolder& folder, const QString& path, QJsonObject& response);
    bool setFile(const RecordsFolder& folder, const QString& path, QMap<QString, QString>& args,
                 QJsonObject& response);
};
