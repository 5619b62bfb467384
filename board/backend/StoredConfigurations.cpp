#include "board/backend/StoredConfigurations.h"

#include "data/WireCursor.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <cstring>

namespace VeskLib::Board {

namespace {

const unsigned char MAGIC[8] = {'E', 'F', 'I', 'S', 'T', 'O', 'R', 0x1A};
const std::uint32_t REVISION = 1;
const std::size_t HEADER_SIZE = 16;
const std::size_t ENTRY_HEADER_SIZE = 8;
const std::size_t CHECKSUM_SIZE = 4;

std::size_t sizeOf(const Payloads& payloads) {
    std::size_t size = HEADER_SIZE + CHECKSUM_SIZE;
    for (const auto& [partition, payload] : payloads) {
        size += ENTRY_HEADER_SIZE + payload.size();
    }
    return size;
}

bool isUndamaged(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < HEADER_SIZE + CHECKSUM_SIZE) {
        return false;
    }
    const std::size_t covered = bytes.size() - CHECKSUM_SIZE;
    VeskUi::WireReader checksum(bytes.data() + covered, CHECKSUM_SIZE);
    return checksum.readU32() == Host::crc32(bytes.data(), covered);
}

}  // namespace

std::vector<unsigned char> encode(const Payloads& payloads) {
    std::vector<unsigned char> bytes(sizeOf(payloads));
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writer.writeBytes(MAGIC, sizeof MAGIC);
    writer.writeU32(REVISION);
    writer.writeU32(static_cast<std::uint32_t>(payloads.size()));
    for (const auto& [partition, payload] : payloads) {
        writer.writeU32(partition);
        writer.writeU32(static_cast<std::uint32_t>(payload.size()));
        writer.writeBytes(payload.data(), payload.size());
    }
    writer.writeU32(Host::crc32(bytes.data(), bytes.size() - CHECKSUM_SIZE));
    return bytes;
}

bool decode(const std::vector<unsigned char>& bytes, Payloads& payloads) {
    if (!isUndamaged(bytes)) {
        return false;
    }
    VeskUi::WireReader reader(bytes.data(), bytes.size() - CHECKSUM_SIZE);
    const unsigned char* magic = reader.readBytes(sizeof MAGIC);
    const std::uint32_t revision = reader.readU32();
    const std::uint32_t count = reader.readU32();
    Payloads read;
    for (std::uint32_t i = 0; i < count && !reader.failed(); ++i) {
        const std::uint32_t partition = reader.readU32();
        const std::size_t size = reader.readU32();
        const unsigned char* payload = reader.readBytes(size);
        if (!reader.failed()) {
            read[partition].assign(payload, payload + size);
        }
    }
    if (reader.failed() || reader.remaining() != 0 || revision != REVISION ||
        std::memcmp(magic, MAGIC, sizeof MAGIC) != 0) {
        return false;
    }
    payloads.swap(read);
    return true;
}

}  // namespace VeskLib::Board
