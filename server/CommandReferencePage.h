#pragma once

#include <QList>
#include <QString>

class HTWSCommand;

// The API reference page: the shipped template filled with one <cmd> element per command.
class CommandReferencePage
{
public:
    // The template shipped with the program; empty when the resource is missing.
    static QString templateText();
    // Replaces the placeholders and "<commands/>"; secret commands are left out.
    static QString fill(const QString& templateText, const QList<HTWSCommand*>& commands, const QString& version,
                        int port);
    // One element: <cmd desc="..." arg="name: text|..." returns="name: text|...">name</cmd>.
    static QString commandElement(HTWSCommand* command);
};
