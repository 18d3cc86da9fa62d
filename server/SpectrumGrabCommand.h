#pragma once

#include "server/BaseCortexCoreNodeCommand.h"

#include <QJsonValue>

// Sends spectra under "spectrum" together with the node's analysis parameters
// ("frequencyStepHz", "windowSeconds", "windowStepSeconds", "hanningPercent",
// "deviceFrequencyHz"); needs a started device.
class SpectrumGrabCommand : public BaseCortexCoreNodeCommand
{
    Q_OBJECT
public:
    explicit SpectrumGrabCommand(DataServerContext* context, QObject* parent = nullptr,
                                 HTWSCommandCategory* category = nullptr);

    bool processCommand(CortexCore* node, Referrer referrer, QJsonObject& response,
                        QMap<QString, QString>& args) override;
    using BaseCortexCoreNodeCommand::processCommand;
    QMap<QString, QString> getArgumentDescriptions() override;
    QMap<QString, QString> getReturnsDescriptions() override;

    static void addAnalysisParameters(CortexCore* node, QJsonObject& response);

protected:
    virtual QJsonValue getSpectrum(CortexCore* node, QMap<QString, QString>& args) = 0;
    // The description of "spectrum" in the reference.
    virtual QString spectrumDescription() const = 0;

private:
    QMap<QString, QString> m_arguments;
};
