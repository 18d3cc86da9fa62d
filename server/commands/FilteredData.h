#pragma once

#include "server/BaseDataCommand.h"

// The node's filtered history, per montage channel.
class FilteredData : public BaseDataCommand
{
    Q_OBJECT
public:
    explicit FilteredData(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) override;
};
