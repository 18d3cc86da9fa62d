#pragma once

#include <QString>
#include <QStringList>

// The one folder that file commands may touch. The server listens on every interface, so a
// path from a request is resolved here first: "..", absolute paths elsewhere and symbolic
// links leading out of the folder are refused with a readable reason.
class RecordsFolder
{
public:
    explicit RecordsFolder(const QString& folder);

    QString path() const { return m_folder; }
    // The folder with every link resolved; empty when it does not exist.
    QString canonicalPath() const;

    // An existing file inside the folder, resolved to its real location. `path` is relative
    // to the folder or absolute.
    bool resolveExisting(const QString& path, QString& resolved, QString& error) const;
    // A file to be written: an existing file (or link) must resolve inside the folder; a new
    // one must have its nearest existing parent folder inside it. Creates the records folder
    // when it is missing. `resolved` is the real location to write to.
    bool resolveForWriting(const QString& path, QString& resolved, QString& error) const;
    // True for a canonical path strictly inside the folder.
    bool containsCanonical(const QString& canonical) const;

    // Every regular file inside, as paths relative to the folder, sorted; links leading out
    // are left out.
    QStringList listFiles() const;
    QString relativePath(const QString& canonical) const;
    // `path` made absolute against the folder, without resolving links. Empty when it holds a
    // ".." step.
    QString absolutePath(const QString& path) const;

    static QString outsideErrorText();

private:
    // False with `error` set when the folder is unknown, the path empty or it steps upwards.
    bool acceptsPathText(const QString& path, QString& error) const;
    static bool hasParentStep(const QString& path);
    QString absolute(const QString& path) const;

    QString m_folder;
};
