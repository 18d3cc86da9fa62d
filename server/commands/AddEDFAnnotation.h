#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

// Adds an annotation to the recording (kept for a recording starting within a few seconds).
class AddEDFAnnotation : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit AddEDFAnnotation(DataServerContext* context, QObject* parent = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QString getDescription() override;
    QMap<QString, QString> getArgumentDescriptions() override;
};
