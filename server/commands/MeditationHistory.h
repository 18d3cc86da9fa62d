#pragma once

#include "server/BaseHistoryCommand.h"

// The node's meditation readings since the previous call (grab mode).
class MeditationHistory : public BaseHistoryCommand
{
    Q_OBJECT
public:
    explicit MeditationHistory(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<TimestampedValue> getHistory(CortexCore* node, QMap<QString, QString>& args) override;
};
