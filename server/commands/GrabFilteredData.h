#pragma once

#include "server/BaseGrabDataCommand.h"

// The filtered samples accumulated since the previous grab, per montage channel.
class GrabFilteredData : public BaseGrabDataCommand
{
    Q_OBJECT
public:
    explicit GrabFilteredData(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;
    QMap<QString, QString> getReturnsDescriptions() override;

protected:
    QList<QList<float>> getData(CortexCore* node, QMap<QString, QString>& args) override;
};
