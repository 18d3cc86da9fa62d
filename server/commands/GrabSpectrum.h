#pragma once

#include "server/SpectrumGrabCommand.h"

// The spectra accumulated since the previous grab.
class GrabSpectrum : public SpectrumGrabCommand
{
    Q_OBJECT
public:
    explicit GrabSpectrum(DataServerContext* context, QObject* parent = nullptr);

    QString getDescription() override;

protected:
    QJsonValue getSpectrum(CortexCore* node, QMap<QString, QString>& args) override;
    QString spectrumDescription() const override;
};
