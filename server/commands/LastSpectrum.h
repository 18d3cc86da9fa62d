#pragma once

#include "server/SpectrumGrabCommand.h"

// The node's latest spectrum, per montage channel.
class LastSpectrum : public SpectrumGrabCommand
{
    Q_OBJECT
public:
    explicit LastSpectrum(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;

protected:
    QJsonValue getSpectrum(CortexCore* node, QMap<QString, QString>& args) override;
    QString spectrumDescription() const override;
};
