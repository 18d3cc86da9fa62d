#pragma once

#include <QString>

// Prepares the folder the HTTP side serves: the shipped scripts and styles, unpacked from the
// program's zip resource, and the filled reference page as index.html.
class StaticWebFolder
{
public:
    // False, with a console line, when the folder cannot be written or the archive is damaged.
    static bool prepare(const QString& folder, const QString& indexHtml);
    // The default folder: "<application data>/web/".
    static QString defaultFolder();
};
