#include "platform/host/storage/ConfigurationFileReader.h"

#include "data/WireCursor.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace VeskLib::Host {

namespace {

const std::size_t LARGEST_HEAD = HEADER_SIZE + LARGEST_VERSION + LARGEST_PARTITION_NAME;

}  // namespace

void ConfigurationFileReader::take(const unsigned char* bytes, std::size_t size) {
    const std::size_t wanted = std::min(size, LARGEST_HEAD - head.size());
    head.insert(head.end(), bytes, bytes + wanted);
    fileSize += size;
    // Add to the checksum all bytes that cannot be the file's last ones: first from the tail, then
    // from this piece.
    const std::size_t surplus = tailSize + size - std::min(tailSize + size, CHECKSUM_SIZE);
    const std::size_t fromTail = std::min(surplus, tailSize);
    checksum = crc32(tail.data(), fromTail, checksum);
    std::copy(tail.data() + fromTail, tail.data() + tailSize, tail.data());
    tailSize -= fromTail;
    const std::size_t fromPiece = surplus - fromTail;
    checksum = crc32(bytes, fromPiece, checksum);
    std::copy(bytes + fromPiece, bytes + size, tail.data() + tailSize);
    tailSize += size - fromPiece;
}

// Checked first, because the fields of a damaged file cannot be trusted.
bool ConfigurationFileReader::isUndamaged() const {
    if (fileSize < HEADER_SIZE + CHECKSUM_SIZE || fileSize > LARGEST_CONFIGURATION_FILE) {
        return false;
    }
    VeskUi::WireReader reader(tail.data(), tail.size());
    return reader.readU32() == checksum;
}

bool ConfigurationFileReader::finish(ConfigurationFile& file) const {
    if (!isUndamaged()) {
        return false;
    }
    const std::size_t headSize = std::min(head.size(), fileSize - CHECKSUM_SIZE);
    VeskUi::WireReader reader(head.data(), headSize);
    ConfigurationFile read;
    const unsigned char* magic = reader.readBytes(sizeof MAGIC);
    read.revision = reader.readU32();
    read.saveTime = reader.readU32();
    read.partition = reader.readU32();
    const std::size_t versionSize = reader.readU16();
    const std::size_t nameSize = reader.readU16();
    const std::size_t payloadSize = reader.readU32();
    const unsigned char* version = reader.readBytes(versionSize);
    const unsigned char* name = reader.readBytes(nameSize);
    if (reader.failed() || std::memcmp(magic, MAGIC, sizeof MAGIC) != 0 ||
        read.revision != REVISION || versionSize > LARGEST_VERSION ||
        nameSize > LARGEST_PARTITION_NAME || payloadSize > fileSize ||
        headSize - reader.remaining() + payloadSize + CHECKSUM_SIZE != fileSize) {
        return false;
    }
    read.version.assign(version, version + versionSize);
    read.partitionName.assign(name, name + nameSize);
    file = std::move(read);
    return true;
}

}  // namespace VeskLib::Host
