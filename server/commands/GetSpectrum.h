#pragma once

#include "server/SpectrumGrabCommand.h"

// The node's spectrum history of the storage time.
class GetSpectrum : public SpectrumGrabCommand
{
    Q_OBJECT
public:
    explicit GetSpectrum(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;

protected:
    QJsonValue getSpectrum(CortexCore* node, QMap<QString, QString>& args) override;
    QString spectrumDescription() const override;
};
