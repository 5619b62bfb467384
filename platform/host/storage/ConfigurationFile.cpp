#include "platform/host/storage/ConfigurationFile.h"

#include "data/WireCursor.h"

#include <array>
#include <cstring>
#include <utility>

namespace VeskLib::Host {

namespace {

const unsigned char MAGIC[8] = {'E', 'F', 'I', 'C', 'O', 'N', 'F', 0x1A};
const std::uint32_t REVISION = 1;
const std::size_t HEADER_SIZE = 28;
const std::size_t CHECKSUM_SIZE = 4;

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

// The checksum first: whatever else a damaged file says is not worth looking at.
bool isUndamaged(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < HEADER_SIZE + CHECKSUM_SIZE || bytes.size() > LARGEST_CONFIGURATION_FILE) {
        return false;
    }
    const std::size_t covered = bytes.size() - CHECKSUM_SIZE;
    VeskUi::WireReader checksum(bytes.data() + covered, CHECKSUM_SIZE);
    return checksum.readU32() == crc32(bytes.data(), covered);
}

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
    if (!isUndamaged(bytes)) {
        return false;
    }
    VeskUi::WireReader reader(bytes.data(), bytes.size() - CHECKSUM_SIZE);
    ConfigurationFile read;
    const unsigned char* magic = reader.readBytes(sizeof MAGIC);
    read.revision = reader.readU32();
    read.saveTime = reader.readU32();
    read.partition = reader.readU32();
    const std::size_t versionSize = reader.readU16();
    const std::size_t nameSize = reader.readU16();
    const std::size_t payloadSize = reader.readU32();
    read.version = reader.readText(versionSize);
    read.partitionName = reader.readText(nameSize);
    const unsigned char* payload = reader.readBytes(payloadSize);
    if (reader.failed() || reader.remaining() != 0 ||
        std::memcmp(magic, MAGIC, sizeof MAGIC) != 0 || read.revision != REVISION ||
        versionSize > LARGEST_VERSION || nameSize > LARGEST_PARTITION_NAME) {
        return false;
    }
    read.payload.assign(payload, payload + payloadSize);
    file = std::move(read);
    return true;
}

std::uint32_t crc32(const unsigned char* bytes, std::size_t size) {
    std::uint32_t value = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < size; ++i) {
        value = value >> 8 ^ CHECKSUM_TABLE[(value ^ bytes[i]) & 0xFF];
    }
    return ~value;
}

}  // namespace VeskLib::Host
