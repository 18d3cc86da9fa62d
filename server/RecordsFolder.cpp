#include "server/RecordsFolder.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>

RecordsFolder::RecordsFolder(const QString& folder)
    : m_folder(folder.isEmpty() ? QString() : QDir::cleanPath(QDir(folder).absolutePath()))
{
}

QString RecordsFolder::canonicalPath() const
{
    return m_folder.isEmpty() ? QString() : QFileInfo(m_folder).canonicalFilePath();
}

QString RecordsFolder::outsideErrorText()
{
    return QStringLiteral("Path is outside the records folder");
}

bool RecordsFolder::hasParentStep(const QString& path)
{
    static const QRegularExpression separators(QStringLiteral("[/\\\\]"));
    return path.split(separators).contains(QStringLiteral(".."));
}

QString RecordsFolder::absolute(const QString& path) const
{
    return QDir::cleanPath(QDir::isAbsolutePath(path) ? path : m_folder + QLatin1Char('/') + path);
}

QString RecordsFolder::absolutePath(const QString& path) const
{
    return m_folder.isEmpty() || path.isEmpty() || hasParentStep(path) ? QString() : absolute(path);
}

bool RecordsFolder::containsCanonical(const QString& canonical) const
{
    QString folder = canonicalPath();
    if (folder.isEmpty() || canonical.isEmpty())
        return false;
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    return canonical.startsWith(folder) && canonical.size() > folder.size();
}

QString RecordsFolder::relativePath(const QString& canonical) const
{
    return QDir(canonicalPath()).relativeFilePath(canonical);
}

bool RecordsFolder::acceptsPathText(const QString& path, QString& error) const
{
    if (m_folder.isEmpty() || path.isEmpty()) {
        error = m_folder.isEmpty() ? QStringLiteral("No records folder") : QStringLiteral("Path is empty");
        return false;
    }
    if (hasParentStep(path)) {
        error = outsideErrorText();
        return false;
    }
    return true;
}

bool RecordsFolder::resolveExisting(const QString& path, QString& resolved, QString& error) const
{
    resolved.clear();
    if (!acceptsPathText(path, error))
        return false;
    const QFileInfo info(absolute(path));
    const QString canonical = info.canonicalFilePath();
    if (canonical.isEmpty()) {
        error = info.isSymLink() ? QStringLiteral("Path is a broken link")
                                 : QStringLiteral("File '%1' does not exist").arg(path);
        return false;
    }
    if (canonical != canonicalPath() && !containsCanonical(canonical)) {
        error = outsideErrorText();
        return false;
    }
    if (!QFileInfo(canonical).isFile()) {
        error = QStringLiteral("'%1' is not a file").arg(path);
        return false;
    }
    resolved = canonical;
    return true;
}

bool RecordsFolder::resolveForWriting(const QString& path, QString& resolved, QString& error) const
{
    resolved.clear();
    if (!acceptsPathText(path, error))
        return false;
    const QFileInfo info(absolute(path));
    if (info.exists() || info.isSymLink())
        return resolveExisting(path, resolved, error);

    if (!QDir().mkpath(m_folder)) {
        error = QStringLiteral("Cannot create the records folder");
        return false;
    }
    // Walk up to the nearest folder that exists; none of the missing steps may be a link.
    QString parent = info.absolutePath();
    QStringList missing;
    while (!QFileInfo::exists(parent)) {
        if (QFileInfo(parent).isSymLink()) {
            error = QStringLiteral("Path is a broken link");
            return false;
        }
        missing.prepend(QFileInfo(parent).fileName());
        const QString up = QFileInfo(parent).absolutePath();
        if (up == parent)
            break;
        parent = up;
    }
    const QString canonicalParent = QFileInfo(parent).canonicalFilePath();
    if (canonicalParent != canonicalPath() && !containsCanonical(canonicalParent)) {
        error = outsideErrorText();
        return false;
    }
    missing.append(info.fileName());
    resolved = canonicalParent + QLatin1Char('/') + missing.join(QLatin1Char('/'));
    return true;
}

QStringList RecordsFolder::listFiles() const
{
    QStringList files;
    if (canonicalPath().isEmpty())
        return files;
    QDirIterator it(m_folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        if (containsCanonical(QFileInfo(file).canonicalFilePath()))
            files.append(QDir(m_folder).relativeFilePath(file));
    }
    files.sort();
    return files;
}
