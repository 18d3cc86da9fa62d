#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

// One record of the records folder: the EDF/BDF file a recording wrote and the files it wrote
// beside it (raw BDF, side file, log, attachments), which share its name up to the first dot.
struct RecordEntry
{
    QString path; // the main EDF/BDF file
    QString name; // its file name without the extension
    QDateTime start;
    double durationSeconds = 0;
    int channelCount = 0;
    double samplingRate = 0;
    int annotationCount = 0;
    qint64 sizeBytes = 0; // every file of the record together
    QStringList files;    // file names, the main file first
    bool readable = false;
};
