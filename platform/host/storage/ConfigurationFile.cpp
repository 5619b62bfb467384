#include "platform/host/storage/ConfigurationFile.h"

#include "data/WireCursor.h"
#include "platform/host/storage/ConfigurationFileReader.h"

#include <array>
#include <utility>

namespace VeskLib::Host {

namespace {

const std::size_t STEP = 4;  // bytes per step, each looked up in a table of its own

using ChecksumTables = std::array<std::array<std::uint32_t, 256>, STEP>;

// The first table has the CRC of each byte; each further table has that of the byte followed by one
// more zero byte.
constexpr ChecksumTables makeChecksumTables() {
    ChecksumTables tables = {};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320U : value >> 1;
        }
        tables[0][i] = value;
    }
    for (std::size_t table = 1; table < STEP; ++table) {
        for (std::size_t i = 0; i < 256; ++i) {
            const std::uint32_t before = tables[table - 1][i];
            tables[table][i] = before >> 8 ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr ChecksumTables CHECKSUM_TABLES = makeChecksumTables();

}  // namespace

std::vector<unsigned char> encode(const ConfigurationFile& file) {
    const std::size_t size = HEADER_SIZE + file.version.size() + file.partitionName.size() +
                             file.payload.size() + CHECKSUM_SIZE;
    if (file.version.size() > LARGEST_VERSION ||
        file.partitionName.size() > LARGEST_PARTITION_NAME || size > LARGEST_CONFIGURATION_FILE) {
        return {};
    }
    std::vector<unsigned char> bytes(size);
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writer.writeBytes(MAGIC, sizeof MAGIC);
    writer.writeU32(file.revision);
    writer.writeU32(file.saveTime);
    writer.writeU32(file.partition);
    writer.writeU16(static_cast<std::uint16_t>(file.version.size()));
    writer.writeU16(static_cast<std::uint16_t>(file.partitionName.size()));
    writer.writeU32(static_cast<std::uint32_t>(file.payload.size()));
    writer.writeBytes(file.version.data(), file.version.size());
    writer.writeBytes(file.partitionName.data(), file.partitionName.size());
    writer.writeBytes(file.payload.data(), file.payload.size());
    writer.writeU32(crc32(bytes.data(), size - CHECKSUM_SIZE));
    return bytes;
}

bool decode(const std::vector<unsigned char>& bytes, ConfigurationFile& file) {
    ConfigurationFileReader reader;
    reader.take(bytes.data(), bytes.size());
    ConfigurationFile read;
    if (!reader.finish(read)) {
        return false;
    }
    const unsigned char* end = bytes.data() + bytes.size() - CHECKSUM_SIZE;
    const std::size_t texts = read.version.size() + read.partitionName.size();
    read.payload.assign(bytes.data() + HEADER_SIZE + texts, end);
    file = std::move(read);
    return true;
}

std::uint32_t crc32(const unsigned char* bytes, std::size_t size, std::uint32_t before) {
    const auto& [last, third, second, first] = CHECKSUM_TABLES;
    std::uint32_t value = ~before;
    for (; size >= STEP; size -= STEP, bytes += STEP) {
        value ^= static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
                 static_cast<std::uint32_t>(bytes[2]) << 16 |
                 static_cast<std::uint32_t>(bytes[3]) << 24;
        value = first[value & 0xFF] ^ second[value >> 8 & 0xFF] ^ third[value >> 16 & 0xFF] ^
                last[value >> 24];
    }
    for (; size != 0; --size, ++bytes) {
        value = value >> 8 ^ last[(value ^ *bytes) & 0xFF];
    }
    return ~value;
}

}  // namespace VeskLib::Host
