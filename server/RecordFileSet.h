#pragma once

#include <QString>
#include <QStringList>

class RecordsFolder;

// The files of one recording: "<stem>.edf" and everything written beside it under the same
// name ("<stem>.raw.bdf", "<stem>.oxd", "<stem>.log", added files "<stem>.<extension>").
class RecordFileSet
{
public:
    // The record's stem: the path without a trailing ".edf" (any case).
    static QString stemOf(const QString& path);
    // The file name of the stem ("2024.05.01-10.00.00" for ".../2024.05.01-10.00.00.edf").
    static QString baseNameOf(const QString& path);
    // Absolute paths of the existing files of the record, sorted by name.
    static QStringList filesOf(const QString& stem);
    // What follows "<base name>." in a file of the record: "edf", "raw.bdf", "log".
    static QString typeOf(const QString& stem, const QString& file);
    // The recordings in the folder: the relative paths of its ".edf" files, sorted.
    static QStringList recordsIn(const RecordsFolder& folder);
    // The record's files that lead to a file inside the folder; `refused` counts the
    // ones that lead out of it.
    static QStringList filesInside(const RecordsFolder& folder, const QString& stem, int* refused = nullptr);
    // True when `types` (comma-separated, leading dots and case ignored; empty = all) names
    // the type or its last suffix.
    static bool typeMatches(const QString& type, const QString& types);
};
