#include "app/CustomAlgorithmRunner.h"

#include "app/ui/AlgorithmDefinition.h"
#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

CustomAlgorithmRunner::CustomAlgorithmRunner(CortexCore* engine, OrvexSettings* settings, DataServerContext* clients)
    : QObject(engine)
    , m_engine(engine)
    , m_settings(settings)
    , m_clients(clients)
{
    connect(settings, &OrvexSettings::CustomAlgorithmsChanged, this, &CustomAlgorithmRunner::run);
    run();
}

// Fresh objects in run order, so a formula reads results of the same step.
void CustomAlgorithmRunner::run()
{
    QList<AlgorithmDefinition> ordered;
    if (!AlgorithmDefinition::runOrder(AlgorithmDefinition::listFromText(m_settings->getCustomAlgorithms()), ordered))
        GlobalConsole::writeLine(QStringLiteral("Custom algorithms read each other in a circle; only the others run"));
    m_engine->clearCustomBCIAlgorithms();
    for (const AlgorithmDefinition& definition : std::as_const(ordered))
        m_engine->addCustomBCIAlgorithm(definition.create());
    Q_EMIT m_clients->controlOptionsChanged();
}
