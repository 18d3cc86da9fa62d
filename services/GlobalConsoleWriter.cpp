#include "services/GlobalConsoleWriter.h"

#include "services/GlobalConsole.h"

namespace {
GlobalConsoleWriter s_writer;

void write(const QString& text)
{
    GlobalConsole::writeItem(text, QString(), QDateTime::currentDateTime());
}
}

GlobalConsoleWriter& kxDebug()
{
    return s_writer;
}

// A char is written as its numeric code on purpose: it is a small number, not a letter.
GlobalConsoleWriter& GlobalConsoleWriter::operator<<(char value)
{
    write(QString::number(int(value), 10));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(short value)
{
    write(QString::number(value, 10));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(int value)
{
    write(QString::number(value, 10));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(float value)
{
    write(QString::number(value, 'g', 6));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(double value)
{
    write(QString::number(value, 'g', 6));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(const char* text)
{
    write(QString::fromUtf8(text));
    return *this;
}

GlobalConsoleWriter& GlobalConsoleWriter::operator<<(const QString& text)
{
    write(text);
    return *this;
}
