#pragma once

#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>

// One entry per parser of outside input. The fuzz targets and the regression test feed the
// same functions, so an input kept from a fuzzing run replays exactly as it was found. Each
// entry parses the bytes, walks every result the parser offers, and aborts when a property
// that must hold for any input is broken (a crash is the failure signal in both users).
namespace FuzzEntries {

using Entry = void (*)(const uint8_t* data, size_t size);

// Console lines are kept but not printed: a fuzzer refuses thousands of inputs a second.
void quietConsole();

// EDF/BDF bytes, read through both the file reader and the EDFReader facade.
void edf(const uint8_t* data, size_t size);
// Montage XML file bytes, and the same bytes as the JSON form of a montage.
void montage(const uint8_t* data, size_t size);
// Line 1: an amplifier channel's text form and a channel selection; line 2: a second
// selection; further lines: channel names. The whole input is also tried as channel JSON.
void channel(const uint8_t* data, size_t size);
// Numeric table file bytes, text or "[Binary]" form.
void table(const uint8_t* data, size_t size);

// Target names as used for the corpus folders: "edf", "montage", "channel", "table".
QStringList targets();
// Null for an unknown name.
Entry entryFor(const QString& target);

} // namespace FuzzEntries
