#include "app/ui/UiModel.h"

#include "app/OrvexModel.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"
#include "app/ui/DevicesController.h"
#include "app/ui/IndicesController.h"
#include "app/ui/RecordingController.h"
#include "app/ui/SignalController.h"
#include "app/ui/SpectrumController.h"
#include "app/ui/StatusController.h"

UiModel::UiModel(OrvexModel* model, const QString& title, QObject* parent)
    : QObject(parent)
    , m_title(title)
    , m_devices(new DevicesController(model->engine(), model->settings(), model->virtualDevicesSettings(), this))
    , m_signal(new SignalController(model->engine(), model->settings(), &m_channels, this))
    , m_spectrum(new SpectrumController(model->engine(), &m_channels, this))
    , m_indices(new IndicesController(model->engine(), this))
    , m_recording(new RecordingController(model->engine(), model->settings(), this))
    , m_status(new StatusController(model, this))
    , m_settings(new SettingsListModel({ model->settings(), model->virtualDevicesSettings() }, this))
    , m_records(new RecordsController(model, this))
    , m_montage(new MontageController(model, this))
    , m_algorithms(new AlgorithmsController(model, m_indices->algorithms(), this))
    , m_feedback(new FeedbackController(model, this))
    , m_console(new ConsoleController(model, this))
    , m_api(new ApiController(model, this))
{
    connect(model, &OrvexModel::statusMessage, m_status, &StatusController::setMessage);
}

void UiModel::setCurrentScreen(int screen)
{
    if (screen == m_currentScreen || screen < 0 || screen >= screens().size())
        return;
    m_currentScreen = screen;
    Q_EMIT currentScreenChanged();
}

QStringList UiModel::screens()
{
    return { QStringLiteral("Devices"),    QStringLiteral("Signal"),     QStringLiteral("Spectrum"),
             QStringLiteral("Indices"),    QStringLiteral("Feedback"),   QStringLiteral("Recording"),
             QStringLiteral("Recordings"), QStringLiteral("Montage"),    QStringLiteral("Algorithms"),
             QStringLiteral("Console"),    QStringLiteral("API"),        QStringLiteral("Settings") };
}

int UiModel::screenIndex(const QString& name)
{
    return screens().indexOf(name);
}

bool UiModel::closeNeedsConfirmation() const
{
    return m_recording->isRecording();
}

void UiModel::prepareToQuit()
{
    m_recording->stop();
}
