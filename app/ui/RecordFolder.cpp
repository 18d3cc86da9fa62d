#include "app/ui/RecordFolder.h"

#include "formats/EDFReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

bool isMainFile(const QString& name)
{
    const QString lower = name.toLower();
    // A raw BDF, and the working copy of a filter run, belong to another file.
    return (lower.endsWith(QLatin1String(".edf")) || lower.endsWith(QLatin1String(".bdf")))
        && !lower.endsWith(QLatin1String(".raw.bdf")) && !lower.contains(QLatin1String(".temp."));
}

} // namespace

QList<RecordEntry> RecordFolder::scan(const QString& folder)
{
    const QStringList names = QDir(folder).entryList(QDir::Files, QDir::Name);
    QList<RecordEntry> records;
    for (const QString& name : names) {
        if (isMainFile(name))
            records.append(describe(QDir(folder).filePath(name), names));
    }
    std::stable_sort(records.begin(), records.end(), [](const RecordEntry& a, const RecordEntry& b) {
        return a.start != b.start ? a.start > b.start : a.name > b.name;
    });
    return records;
}

RecordEntry RecordFolder::describe(const QString& path, const QStringList& siblings)
{
    const QFileInfo main(path);
    RecordEntry record;
    record.path = main.absoluteFilePath();
    record.name = main.completeBaseName();
    record.files.append(main.fileName());
    record.sizeBytes = main.size();
    // The recorder names every file of a record after the record's stem. A record whose stem
    // extends this one ("session" and "session.2") keeps its own files: deleting one record
    // must never take another's.
    const QString stem = record.name + QLatin1Char('.');
    QStringList longerStems;
    for (const QString& sibling : siblings) {
        if (sibling != main.fileName() && isMainFile(sibling) && sibling.startsWith(stem))
            longerStems.append(QFileInfo(sibling).completeBaseName() + QLatin1Char('.'));
    }
    const auto belongsToLonger = [&longerStems](const QString& name) {
        return std::any_of(longerStems.cbegin(), longerStems.cend(),
                           [&name](const QString& longer) { return name.startsWith(longer); });
    };
    for (const QString& sibling : siblings) {
        if (sibling.startsWith(stem) && sibling != main.fileName() && !isMainFile(sibling)
            && !belongsToLonger(sibling)) {
            record.files.append(sibling);
            record.sizeBytes += QFileInfo(main.dir().filePath(sibling)).size();
        }
    }
    const EDFInfo info = EDFReader::fileInfo(path);
    record.readable = info.valid;
    record.start = info.valid && info.startDate.isValid() ? info.startDate : main.lastModified();
    record.channelCount = info.channelCount;
    record.samplingRate = info.samplingRate;
    record.durationSeconds = info.samplingRate > 0 ? info.lengthSamples / double(info.samplingRate) : 0.0;
    record.annotationCount = info.annotationCount;
    return record;
}

bool RecordFolder::remove(const RecordEntry& record, QString& error)
{
    const QDir dir = QFileInfo(record.path).dir();
    QStringList failed;
    for (const QString& name : record.files) {
        QFile file(dir.filePath(name));
        if (file.exists() && !file.remove())
            failed.append(QStringLiteral("%1 (%2)").arg(name, file.errorString()));
    }
    if (failed.isEmpty())
        return true;
    error = QStringLiteral("Could not delete ") + failed.join(QStringLiteral(", "));
    return false;
}
