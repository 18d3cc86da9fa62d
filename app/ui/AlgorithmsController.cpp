#include "app/ui/AlgorithmsController.h"

#include "app/OrvexModel.h"
#include "app/ui/AlgorithmForm.h"
#include "core/CortexCore.h"
#include "dsp/CustomBCIAlgorithm.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

AlgorithmsController::AlgorithmsController(OrvexModel* model, AlgorithmListModel* values, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_engine(model->engine())
    , m_list(values)
{
    connect(m_engine, &CortexCore::montageChanged, this, &AlgorithmsController::channelNamesChanged);
    connect(m_engine, &CortexCore::deviceStarted, this, &AlgorithmsController::channelNamesChanged, Qt::QueuedConnection);
    connect(m_engine, &CortexCore::deviceStopped, this, &AlgorithmsController::channelNamesChanged, Qt::QueuedConnection);
    // A client may set the algorithms through the settings commands.
    connect(model->settings(), &OrvexSettings::CustomAlgorithmsChanged, this, &AlgorithmsController::loadFromSettings);
    loadFromSettings();
}

QStringList AlgorithmsController::channelNames() const
{
    return m_engine->isDeviceStarted() ? m_engine->getCurrentMontageChannelNames() : QStringList();
}

QVariantMap AlgorithmsController::fields(int row, const QString& kind) const
{
    if (row >= 0 && row < m_list.definitions().size())
        return AlgorithmForm::fields(m_list.definitions().at(row));
    AlgorithmDefinition fresh;
    fresh.kind = AlgorithmDefinition::kindOf(kind);
    if (fresh.kind == AlgorithmDefinition::BandRatio) { // theta over beta
        fresh.from = 4;
        fresh.to = 8;
    }
    return AlgorithmForm::fields(fresh);
}

bool AlgorithmsController::save(int row, const QVariantMap& fields)
{
    QList<AlgorithmDefinition> definitions = m_list.definitions();
    const bool replacing = row >= 0 && row < definitions.size();
    AlgorithmForm form;
    form.others = definitions;
    if (replacing)
        form.others.removeAt(row);
    form.channelNames = channelNames();
    AlgorithmDefinition definition;
    QVariantMap errors;
    if (!form.read(fields, definition, errors)) {
        setErrors(errors);
        return false;
    }
    // A renamed algorithm must not leave a formula reading the old name.
    if (replacing && definitions[row].name.compare(definition.name, Qt::CaseInsensitive) != 0) {
        for (const AlgorithmDefinition& other : std::as_const(form.others)) {
            if (other.reads().contains(definitions[row].name.toLower())) {
                setErrors({ { QStringLiteral("name"),
                              QStringLiteral("The formula of %1 reads %2").arg(other.name, definitions[row].name) } });
                return false;
            }
        }
    }
    if (replacing)
        definitions[row] = definition;
    else
        definitions.append(definition);
    setErrors({});
    setDefinitions(definitions);
    return true;
}

bool AlgorithmsController::remove(int row)
{
    QList<AlgorithmDefinition> definitions = m_list.definitions();
    if (row < 0 || row >= definitions.size())
        return false;
    const QString name = definitions[row].name;
    for (const AlgorithmDefinition& other : std::as_const(definitions)) {
        if (other.reads().contains(name.toLower())) {
            setErrors({}, QStringLiteral("%1 cannot go: the formula of %2 reads it").arg(name, other.name));
            return false;
        }
    }
    definitions.removeAt(row);
    setErrors({});
    setDefinitions(definitions);
    return true;
}

bool AlgorithmsController::setVisibleToControl(int row, bool visible)
{
    QList<AlgorithmDefinition> definitions = m_list.definitions();
    if (row < 0 || row >= definitions.size())
        return false;
    definitions[row].visibleToControl = visible;
    store(definitions);
    return true;
}

void AlgorithmsController::clearErrors()
{
    setErrors({});
}

void AlgorithmsController::setDefinitions(const QList<AlgorithmDefinition>& definitions)
{
    store(definitions); // the engine's runner follows the setting
}

void AlgorithmsController::store(const QList<AlgorithmDefinition>& definitions)
{
    m_list.setDefinitions(definitions);
    m_stored = AlgorithmDefinition::listToText(definitions);
    m_model->settings()->setCustomAlgorithms(m_stored);
}

void AlgorithmsController::loadFromSettings()
{
    const QString text = m_model->settings()->getCustomAlgorithms();
    if (text == m_stored)
        return;
    m_stored = text;
    m_list.setDefinitions(AlgorithmDefinition::listFromText(text));
}

void AlgorithmsController::setErrors(const QVariantMap& errors, const QString& error)
{
    if (errors == m_errors && error == m_error)
        return;
    m_errors = errors;
    m_error = error;
    Q_EMIT errorsChanged();
}
