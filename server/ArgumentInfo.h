#pragma once

#include <QString>

// Name and description of one argument or reply key, as the command reference lists it.
struct ArgumentInfo
{
    ArgumentInfo(QString name, QString description)
        : name(std::move(name))
        , description(std::move(description))
    {
    }
    QString name;
    QString description;
};
