#pragma once

#include "server/BaseGrabDataCommand.h"

// The unfiltered samples accumulated since the previous grab. Its help text says Get and RawData's says Grab: kept that way for existing clients.
class GrabRawData : public BaseGrabDataCommand
{
    Q_OBJECT
public:
    explicit GrabRawData(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) override;
};
