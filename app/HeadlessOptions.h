#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// What the command line asks of a run without a window.
struct HeadlessOptions
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

    // Fills `options` from the arguments (program name first); false with `error` set when
    // the command line is wrong.
    static bool parse(const QStringList& arguments, HeadlessOptions& options, QString& error);
    static QString usage();
};
