#pragma once

#include "app/ui/AlgorithmsController.h"
#include "app/ui/ApiController.h"
#include "app/ui/ChannelListModel.h"
#include "app/ui/ConsoleController.h"
#include "app/ui/DevicesController.h"
#include "app/ui/FeedbackController.h"
#include "app/ui/IndicesController.h"
#include "app/ui/MontageController.h"
#include "app/ui/RecordingController.h"
#include "app/ui/RecordsController.h"
#include "app/ui/SettingsListModel.h"
#include "app/ui/SignalController.h"
#include "app/ui/SpectrumController.h"
#include "app/ui/StatusController.h"

#include <QObject>

class OrvexModel;

// Everything the screens see, one object per concern, given to the interface as "ui".
class UiModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(ChannelListModel* channels READ channels CONSTANT)
    Q_PROPERTY(DevicesController* devices READ devices CONSTANT)
    Q_PROPERTY(SignalController* signal READ signal CONSTANT)
    Q_PROPERTY(SpectrumController* spectrum READ spectrum CONSTANT)
    Q_PROPERTY(IndicesController* indices READ indices CONSTANT)
    Q_PROPERTY(RecordingController* recording READ recording CONSTANT)
    Q_PROPERTY(StatusController* status READ status CONSTANT)
    Q_PROPERTY(SettingsListModel* settings READ settings CONSTANT)
    Q_PROPERTY(RecordsController* records READ records CONSTANT)
    Q_PROPERTY(MontageController* montage READ montage CONSTANT)
    Q_PROPERTY(AlgorithmsController* algorithms READ algorithms CONSTANT)
    Q_PROPERTY(FeedbackController* feedback READ feedback CONSTANT)
    Q_PROPERTY(ConsoleController* console READ console CONSTANT)
    Q_PROPERTY(ApiController* api READ api CONSTANT)
    Q_PROPERTY(int currentScreen READ currentScreen WRITE setCurrentScreen NOTIFY currentScreenChanged)
    Q_PROPERTY(QStringList screens READ screens CONSTANT)
public:
    UiModel(OrvexModel* model, const QString& title, QObject* parent = nullptr);

    QString title() const { return m_title; }
    ChannelListModel* channels() { return &m_channels; }
    DevicesController* devices() const { return m_devices; }
    SignalController* signal() const { return m_signal; }
    SpectrumController* spectrum() const { return m_spectrum; }
    IndicesController* indices() const { return m_indices; }
    RecordingController* recording() const { return m_recording; }
    StatusController* status() const { return m_status; }
    SettingsListModel* settings() const { return m_settings; }
    RecordsController* records() const { return m_records; }
    MontageController* montage() const { return m_montage; }
    AlgorithmsController* algorithms() const { return m_algorithms; }
    FeedbackController* feedback() const { return m_feedback; }
    ConsoleController* console() const { return m_console; }
    ApiController* api() const { return m_api; }
    int currentScreen() const { return m_currentScreen; }
    void setCurrentScreen(int screen);
    // The screens' names in tab order.
    static QStringList screens();
    // The tab of a screen by its name, -1 for none.
    Q_INVOKABLE static int screenIndex(const QString& name);
    Q_INVOKABLE void showScreen(const QString& name) { setCurrentScreen(screenIndex(name)); }

    // True when closing now would end a recording, so the window asks first.
    Q_INVOKABLE bool closeNeedsConfirmation() const;
    // Ends a recording cleanly before the program quits, however it quits.
    Q_INVOKABLE void prepareToQuit();

Q_SIGNALS:
    void currentScreenChanged();

private:
    QString m_title;
    ChannelListModel m_channels;
    DevicesController* m_devices;
    SignalController* m_signal;
    SpectrumController* m_spectrum;
    IndicesController* m_indices;
    RecordingController* m_recording;
    StatusController* m_status;
    SettingsListModel* m_settings;
    RecordsController* m_records;
    MontageController* m_montage;
    AlgorithmsController* m_algorithms;
    FeedbackController* m_feedback;
    ConsoleController* m_console;
    ApiController* m_api;
    int m_currentScreen = 0;
};
