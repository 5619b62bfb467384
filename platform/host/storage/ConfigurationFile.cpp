#include "platform/host/storage/ConfigurationFile.h"

#include "data/WireCursor.h"
#include "platform/host/storage/ConfigurationFileReader.h"

#include <array>
#include <utility>

namespace VeskLib::Host {

namespace {

constexpr std::array<std::uint32_t, 256> makeChecksumTable() {
    std::array<std::uint32_t, 256> table = {};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320U : value >> 1;
        }
        table[i] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> CHECKSUM_TABLE = makeChecksumTable();

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
    std::uint32_t value = ~before;
    for (std::size_t i = 0; i < size; ++i) {
        value = value >> 8 ^ CHECKSUM_TABLE[(value ^ bytes[i]) & 0xFF];
    }
    return ~value;
}

}  // namespace VeskLib::Host
