#pragma once

#include "data/WireCursor.h"

#include <string>

namespace VeskLib::Host {

// A text on the wire: its length in 2 bytes, then the text. A longer text than 65535 bytes is cut.
std::size_t wireTextSize(const std::string& text);
void writeWireText(VeskUi::WireWriter& writer, const std::string& text);
std::string readWireText(VeskUi::WireReader& reader);

}  // namespace VeskLib::Host
