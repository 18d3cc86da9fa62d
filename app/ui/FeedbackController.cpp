#include "app/ui/FeedbackController.h"

#include "app/OrvexModel.h"
#include "core/CortexCore.h"
#include "services/GlobalConsole.h"

#include <QHash>

FeedbackController::FeedbackController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
    connect(model, &DataServerContext::currentFeedbackScreenChanged, this, &FeedbackController::currentChanged);
    connect(model->engine(), &CortexCore::newCortexDataResult, this, &FeedbackController::onResult);
    connect(model->engine(), &CortexCore::deviceStarted, this, [this] { setLevels(-1, -1); });
}

QStringList FeedbackController::screens() const
{
    return m_model->getFeedbackScreens();
}

QStringList FeedbackController::titles() const
{
    const QHash<QString, QString> known = { { QStringLiteral("bars"), tr("Bars") },
                                            { QStringLiteral("balloon"), tr("Balloon") },
                                            { QStringLiteral("spectrum"), tr("Spectrum") } };
    QStringList result;
    for (const QString& screen : screens())
        result.append(known.value(screen, screen));
    return result;
}

QString FeedbackController::current() const
{
    return m_model->getCurrentFeedbackScreen();
}

bool FeedbackController::setCurrent(const QString& screen)
{
    if (m_model->setCurrentFeedbackScreen(screen))
        return true;
    GlobalConsole::writeLine(QStringLiteral("No feedback screen '%1'").arg(screen));
    return false;
}

void FeedbackController::setCurrentIndex(int index)
{
    const QStringList names = screens();
    if (index >= 0 && index < names.size())
        setCurrent(names[index]);
}

bool FeedbackController::setMeditationGoal(double goal)
{
    return setGoal(m_meditationGoal, goal, "meditation");
}

bool FeedbackController::setConcentrationGoal(double goal)
{
    return setGoal(m_concentrationGoal, goal, "concentration");
}

bool FeedbackController::setGoal(double& goal, double value, const char* name)
{
    if (!(value >= 0 && value <= 100)) {
        GlobalConsole::writeLine(QStringLiteral("The %1 goal must be between 0 and 100, not %2")
                                     .arg(QLatin1String(name))
                                     .arg(value));
        return false;
    }
    if (goal == value)
        return true;
    const bool wasReached[2] = { meditationReached(), concentrationReached() };
    goal = value;
    Q_EMIT goalsChanged();
    if (wasReached[0] != meditationReached() || wasReached[1] != concentrationReached())
        Q_EMIT reachedChanged();
    return true;
}

double FeedbackController::balloonLift() const
{
    return m_concentration < 0 ? 0.0 : qBound(0.0, m_concentration / 100.0, 1.0);
}

void FeedbackController::setFullScreen(bool on)
{
    if (m_fullScreen == on)
        return;
    m_fullScreen = on;
    Q_EMIT fullScreenChanged();
}

void FeedbackController::setLevels(double meditation, double concentration)
{
    if (meditation == m_meditation && concentration == m_concentration)
        return;
    const bool wasReached[2] = { meditationReached(), concentrationReached() };
    m_meditation = meditation;
    m_concentration = concentration;
    Q_EMIT levelsChanged();
    if (wasReached[0] != meditationReached() || wasReached[1] != concentrationReached())
        Q_EMIT reachedChanged();
}

void FeedbackController::onResult(const CortexDataResult& result)
{
    if (result.hasIndexValues)
        setLevels(result.meditation.level, result.concentration.level);
}
