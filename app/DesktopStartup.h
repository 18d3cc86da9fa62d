#pragma once

#include "app/CommandLineOptions.h"

#include <QElapsedTimer>

#include <memory>

class InstanceChannel;
class OrvexAppCommon;
class OrvexModel;
class QApplication;
class QQmlApplicationEngine;
class QQuickWindow;
class TerminationSignals;
class UiModel;

// The program with its window: prepares the graphics and web stack, makes sure no sibling
// runs, creates the settings and the model, loads the screens and runs the event loop.
// Objects are released in the reverse order of their creation.
class DesktopStartup
{
public:
    DesktopStartup(int& argc, char** argv, const CommandLineOptions& options);
    ~DesktopStartup();

    // Every step up to the loaded interface. False when the program must end now, with the
    // code main returns: 0 when a running instance took over, -1 when the interface gave no
    // window, 1 or 2 for a failing command interface or a bad --set.
    bool start(int& exitCode);
    // The event loop; the recording is closed however the loop ends.
    int exec();

    OrvexModel* model() const { return m_model.get(); }
    UiModel* ui() const { return m_ui; }
    QQmlApplicationEngine* qmlEngine() const { return m_qml.get(); }
    QQuickWindow* window() const;
    // Milliseconds from the start to the window's first frame; -1 before it.
    qint64 firstFrameMs() const { return m_firstFrameMs; }

    // The maker's applications; only an instance of our own name stops this start.
    static QStringList makerApplications();

private:
    void raiseWindow();
    void quitCleanly();
    void connectEngineEvents();
    void exposeInitialGeometry();
    void setWindowIcon();
    QString interfaceFile() const;
    void watchFirstFrame();
    void startDevices();
    void finish();

    int& m_argc;
    char** m_argv;
    CommandLineOptions m_options;
    QElapsedTimer m_sinceStart;
    qint64 m_firstFrameMs = -1;
    std::unique_ptr<OrvexAppCommon> m_common;
    std::unique_ptr<QApplication> m_app;
    std::unique_ptr<InstanceChannel> m_instance;
    std::unique_ptr<OrvexModel> m_model;
    UiModel* m_ui = nullptr; // owned by the model
    std::unique_ptr<QQmlApplicationEngine> m_qml;
    std::unique_ptr<TerminationSignals> m_termination;
    bool m_keepingAwake = false;
    bool m_finished = false;
};
