#pragma once

#include "server/BaseDataCommand.h"

// The node's unfiltered montage history. Its help text says Grab and GrabRawData's says Get: kept that way for existing clients.
class RawData : public BaseDataCommand
{
    Q_OBJECT
public:
    explicit RawData(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) override;
};
