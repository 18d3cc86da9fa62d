#include "server/commands/ControlValues.h"

#include "core/CortexCore.h"
#include "dsp/CustomBCIAlgorithm.h"
#include "server/DataServerContext.h"

#include <QStringList>

namespace {
const QString MeditationKey = QStringLiteral("meditation");
const QString ConcentrationKey = QStringLiteral("concentration");
const QString MentalStateKey = QStringLiteral("mentalstate");

bool isBuiltIn(const QString& name)
{
    return name == MeditationKey || name == ConcentrationKey || name == MentalStateKey;
}

QJsonObject option(const QString& name, bool discrete)
{
    QJsonObject item;
    item.insert(QStringLiteral("name"), name);
    item.insert(QStringLiteral("type"), discrete ? QStringLiteral("discrete") : QStringLiteral("proportional"));
    return item;
}
}

double ControlValues::indexLevel(const CortexCore* node, int index)
{
    if (!node || !node->isDeviceStarted())
        return -1;
    return double(node->getLastMetaIndexResult(index).level);
}

QJsonObject ControlValues::values(const CortexCore* node)
{
    QJsonObject result;
    result.insert(MeditationKey, indexLevel(node, CortexCore::Meditation));
    result.insert(ConcentrationKey, indexLevel(node, CortexCore::Concentration));
    result.insert(MentalStateKey, NoMentalState);
    if (!node)
        return result;
    // A custom algorithm cannot shadow the built-in values.
    for (const CustomBCIAlgorithm* algorithm : node->getCustomAlgoritms()) {
        if (algorithm->visibleToControl() && !isBuiltIn(algorithm->getName()))
            result.insert(algorithm->getName(), algorithm->lastResult());
    }
    return result;
}

QJsonArray ControlValues::options(const DataServerContext* context)
{
    QJsonArray controls { option(MeditationKey, false), option(ConcentrationKey, false),
                          option(MentalStateKey, true) };
    QStringList seen { MeditationKey, ConcentrationKey, MentalStateKey };
    const int nodeCount = context ? context->getNodeCount() : 0;
    for (int i = 0; i < nodeCount; ++i) {
        const CortexCore* node = context->getNode(i);
        if (!node)
            continue;
        for (const CustomBCIAlgorithm* algorithm : node->getCustomAlgoritms()) {
            if (!algorithm->visibleToControl() || seen.contains(algorithm->getName()))
                continue;
            seen.append(algorithm->getName());
            controls.append(option(algorithm->getName(), false));
        }
    }
    return controls;
}
