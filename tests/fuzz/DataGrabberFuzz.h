#pragma once

#include <cstddef>
#include <cstdint>

namespace FuzzEntries {

// Byte 0: channel count (0..9), byte 1: frame format (odd: "6x3"); then chunks of one length
// byte (0..31) and that many bytes, each a notification for the headset's frame decoder; a
// length byte of 255 instead asks for stand-ins of as many lost packets as the next byte says.
void datagrabber(const uint8_t* data, size_t size);

} // namespace FuzzEntries
