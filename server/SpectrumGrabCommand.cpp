#include "server/SpectrumGrabCommand.h"

#include "core/CortexCore.h"

SpectrumGrabCommand::SpectrumGrabCommand(DataServerContext* context, QObject* parent, HTWSCommandCategory* category)
    : BaseCortexCoreNodeCommand(RequiresDevice, context, parent, category)
    , m_arguments(createArgs({ { QStringLiteral("node"), tr("[Optional] Index of the engine node, 0 by default") } }))
{
}

QMap<QString, QString> SpectrumGrabCommand::getArgumentDescriptions()
{
    return m_arguments;
}

QMap<QString, QString> SpectrumGrabCommand::getReturnsDescriptions()
{
    return createArgs({ { QStringLiteral("spectrum"), spectrumDescription() },
                        { QStringLiteral("frequencyStepHz"), tr("Frequency step between spectrum bins (Hz)") },
                        { QStringLiteral("windowSeconds"), tr("Analysis window (seconds)") },
                        { QStringLiteral("windowStepSeconds"), tr("Step between spectra (seconds)") },
                        { QStringLiteral("hanningPercent"), tr("Tapered share of the window (percent)") },
                        { QStringLiteral("deviceFrequencyHz"), tr("Sampling rate of the device (Hz)") } });
}

bool SpectrumGrabCommand::processCommand(CortexCore* node, Referrer, QJsonObject& response,
                                         QMap<QString, QString>& args)
{
    response.insert(QStringLiteral("spectrum"), getSpectrum(node, args));
    addAnalysisParameters(node, response);
    return true;
}

void SpectrumGrabCommand::addAnalysisParameters(CortexCore* node, QJsonObject& response)
{
    response.insert(QStringLiteral("frequencyStepHz"), double(node->getSpectrumFrequencyStep()));
    response.insert(QStringLiteral("windowSeconds"), double(node->getSpectrumWindowSeconds()));
    response.insert(QStringLiteral("windowStepSeconds"), double(node->getSpectrumWindowStepSeconds()));
    response.insert(QStringLiteral("hanningPercent"), double(node->getSpectrumHanningPercent()));
    response.insert(QStringLiteral("deviceFrequencyHz"), double(node->getCurrentDeviceFrequency()));
}
