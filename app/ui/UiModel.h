#pragma once

#include "app/ui/ChannelListModel.h"
#include "app/ui/DevicesController.h"
#include "app/ui/IndicesController.h"
#include "app/ui/RecordingController.h"
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
    int currentScreen() const { return m_currentScreen; }
    void setCurrentScreen(int screen);
    // "Devices", "Signal", "Spectrum", "Indices", "Recording", "Settings": the screens in tab order.
    static QStringList screens();

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
    int m_currentScreen = 0;
};
