#pragma once

#include "app/ui/RecordEntry.h"

#include <QList>
#include <QString>

// The records of a folder, read from the files themselves, and their removal.
class RecordFolder
{
public:
    // Every EDF/BDF file of the folder that a recording wrote as its main file, newest first.
    static QList<RecordEntry> scan(const QString& folder);
    // Deletes every file of the record; false with `error` when one could not be deleted.
    static bool remove(const RecordEntry& record, QString& error);

private:
    static RecordEntry describe(const QString& path, const QStringList& siblings);
};
