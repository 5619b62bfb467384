#include "data/WireCursor.h"

#include <cstring>

namespace VeskLib::VeskUi {

const unsigned char* WireReader::readBytes(std::size_t count) {
    if (failure || count > remaining()) {
        failure = true;
        return nullptr;
    }
    const unsigned char* start = bytes + offset;
    offset += count;
    return start;
}

std::uint32_t WireReader::readBigEndian(std::size_t count) {
    const unsigned char* start = readBytes(count);
    std::uint32_t value = 0;
    for (std::size_t i = 0; start != nullptr && i < count; ++i) {
        value = value << 8 | start[i];
    }
    return value;
}

void WireWriter::writeBytes(const void* source, std::size_t count) {
    if (failure || count > size - offset) {
        failure = true;
        return;
    }
    if (count != 0) {
        std::memcpy(bytes + offset, source, count);
    }
    offset += count;
}

void WireWriter::writeBigEndian(std::uint32_t value, std::size_t count) {
    unsigned char ordered[4];
    for (std::size_t i = 0; i < count; ++i) {
        ordered[i] = static_cast<unsigned char>(value >> 8 * (count - 1 - i));
    }
    writeBytes(ordered, count);
}

}  // namespace VeskLib::VeskUi
