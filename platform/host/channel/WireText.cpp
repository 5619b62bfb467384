#include "platform/host/channel/WireText.h"

#include <algorithm>

namespace VeskLib::Host {

namespace {

const std::size_t LENGTH_SIZE = 2;
const std::size_t LONGEST_TEXT = 0xFFFF;

std::size_t lengthOnWire(const std::string& text) {
    return std::min(text.size(), LONGEST_TEXT);
}

}  // namespace

std::uint8_t readU8(VeskUi::WireReader& reader) {
    const unsigned char* byte = reader.readBytes(1);
    return byte == nullptr ? std::uint8_t{0} : *byte;
}

void writeU8(VeskUi::WireWriter& writer, std::uint8_t value) {
    writer.writeBytes(&value, 1);
}

std::string readText(VeskUi::WireReader& reader, std::size_t count) {
    const unsigned char* start = reader.readBytes(count);
    if (start == nullptr) {
        return {};
    }
    return {start, start + count};
}

std::size_t wireTextSize(const std::string& text) {
    return LENGTH_SIZE + lengthOnWire(text);
}

void writeWireText(VeskUi::WireWriter& writer, const std::string& text) {
    writer.writeU16(static_cast<std::uint16_t>(lengthOnWire(text)));
    writer.writeBytes(text.data(), lengthOnWire(text));
}

std::string readWireText(VeskUi::WireReader& reader) {
    return readText(reader, reader.readU16());
}

}  // namespace VeskLib::Host
