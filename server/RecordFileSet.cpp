#include "server/RecordFileSet.h"

#include "server/RecordsFolder.h"
#include "services/TextHelper.h"

#include <QDir>
#include <QFileInfo>

namespace {
const QString EdfSuffix = QStringLiteral(".edf");
}

QString RecordFileSet::stemOf(const QString& path)
{
    return path.endsWith(EdfSuffix, Qt::CaseInsensitive) ? path.chopped(EdfSuffix.size()) : path;
}

QString RecordFileSet::baseNameOf(const QString& path)
{
    return QFileInfo(stemOf(path)).fileName();
}

QStringList RecordFileSet::filesOf(const QString& stem)
{
    const QFileInfo info(stem);
    const QString prefix = info.fileName() + QLatin1Char('.');
    if (info.fileName().isEmpty())
        return {};
    QStringList files;
    const QDir folder = info.absoluteDir();
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        if (name.startsWith(prefix) && name.size() > prefix.size())
            files.append(folder.filePath(name));
    }
    return files;
}

QString RecordFileSet::typeOf(const QString& stem, const QString& file)
{
    const QString prefix = QFileInfo(stem).fileName() + QLatin1Char('.');
    const QString name = QFileInfo(file).fileName();
    return name.startsWith(prefix) ? name.mid(prefix.size()) : QFileInfo(file).suffix();
}

bool RecordFileSet::typeMatches(const QString& type, const QString& types)
{
    const QList<QString> wanted = TextHelper::splitAndTrim(types);
    if (wanted.isEmpty())
        return true;
    const QString last = type.section(QLatin1Char('.'), -1);
    for (QString entry : wanted) {
        while (entry.startsWith(QLatin1Char('.')))
            entry.remove(0, 1);
        if (entry.compare(type, Qt::CaseInsensitive) == 0 || entry.compare(last, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QStringList RecordFileSet::recordsIn(const RecordsFolder& folder)
{
    QStringList records;
    for (const QString& file : folder.listFiles()) {
        if (file.endsWith(EdfSuffix, Qt::CaseInsensitive))
            records.append(file);
    }
    return records;
}

QStringList RecordFileSet::filesInside(const RecordsFolder& folder, const QString& stem, int* refused)
{
    QStringList inside;
    int outside = 0;
    for (const QString& file : filesOf(stem)) {
        QString resolved;
        QString error;
        if (folder.resolveExisting(file, resolved, error))
            inside.append(file);
        else
            ++outside;
    }
    if (refused)
        *refused = outside;
    return inside;
}
