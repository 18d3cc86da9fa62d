#pragma once

#include "server/BaseHistoryCommand.h"

// The node's concentration readings since the previous call (grab mode).
class ConcentrationHistory : public BaseHistoryCommand
{
    Q_OBJECT
public:
    explicit ConcentrationHistory(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<TimestampedValue> getHistory(CortexCore* node, QMap<QString, QString>& args) override;
};
