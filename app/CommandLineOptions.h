#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// What the command line asks of a run, with or without a window.
struct CommandLineOptions
{
    bool headless = false;
    bool help = false;
    bool version = false;
    bool printSettings = false;
    bool verbose = false;
    QString device = QStringLiteral("generator");
    double durationSeconds = 0; // 0: until interrupted
    double speed = 1;           // file playback: 1 real time, 0 as fast as possible
    QString csvPath;
    QString csvMetricsPath;
    QString recordPath; // empty: no recording
    bool record = false;
    int apiPort = 0;     // 0: the APIPort setting
    bool noApi = false;
    QList<QPair<QString, QString>> settings; // --set Key=Value, in order
    bool deviceGiven = false; // the window starts a device only when asked to
    QString uiFile;           // the window's interface from this file instead of the resources

    // Asked for, or implied by an option that only a run without a window has.
    bool runsWithoutWindow() const
    {
        return headless || help || version || printSettings || durationSeconds > 0 || record || speed != 1
            || !csvPath.isEmpty() || !csvMetricsPath.isEmpty();
    }

    // Fills `options` from the arguments (program name first); false with `error` set when
    // the command line is wrong.
    static bool parse(const QStringList& arguments, CommandLineOptions& options, QString& error);
    static QString usage();
};
