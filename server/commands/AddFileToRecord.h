#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

#include <QHash>
#include <QPointer>

// Writes a file beside the running recording, named after it: "<record>.<extension>". The
// content is the request body or the "body" argument, base64 text when "format" is "base64".
class AddFileToRecord : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit AddFileToRecord(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    bool processCommandWithBody(Referrer referrer, QJsonObject& response, QMap<QString, QString>& args,
                                QByteArray& body) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QMap<QString, QString> getArgumentDescriptions() override;

    // An extension names a file beside the record, never another folder.
    static bool isPlainExtension(const QString& extension);

private:
    // The engine tells the record's path only when it starts, so every node is followed.
    void followRecords(CortexCore* node);
    QString recordStem(CortexCore* node) const;
    bool addFile(CortexCore* node, QJsonObject& response, QMap<QString, QString>& args, const QByteArray* body);

    QHash<CortexCore*, QString> m_recordPaths;
    const QByteArray* m_body = nullptr;
};
