#pragma once

#include "data/WireCursor.h"

#include <cstdint>
#include <string>

namespace VeskLib::Host {

// What the board's packets need beyond the cursor that the program brings. Past the end, a read
// returns zero or an empty text and a write is dropped, like the cursor's own.

std::uint8_t readU8(VeskUi::WireReader& reader);
void writeU8(VeskUi::WireWriter& writer, std::uint8_t value);

// Reads `count` bytes as text.
std::string readText(VeskUi::WireReader& reader, std::size_t count);

// A text on the wire: its length in 2 bytes, then the text. A longer text than 65535 bytes is cut.
std::size_t wireTextSize(const std::string& text);
void writeWireText(VeskUi::WireWriter& writer, const std::string& text);
std::string readWireText(VeskUi::WireReader& reader);

}  // namespace VeskLib::Host
