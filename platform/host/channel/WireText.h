#pragma once

#include "data/WireCursor.h"

#include <cstdint>
#include <string>

namespace VeskLib::Host {

// Further types for WireReader and WireWriter. Past the end of the buffer, a read returns zero or
// an empty text, and a write is dropped.

std::uint8_t readU8(VeskUi::WireReader& reader);
void writeU8(VeskUi::WireWriter& writer, std::uint8_t value);

// Reads `count` bytes as text.
std::string readText(VeskUi::WireReader& reader, std::size_t count);

// A text on the wire: its length in 2 bytes, then the text, truncated to 65535 bytes.
std::size_t wireTextSize(const std::string& text);
void writeWireText(VeskUi::WireWriter& writer, const std::string& text);
std::string readWireText(VeskUi::WireReader& reader);

}  // namespace VeskLib::Host
