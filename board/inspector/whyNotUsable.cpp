#include "board/inspector/whyNotUsable.h"

#include "data/WireCursor.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <cstdint>
#include <cstring>

namespace VeskLib::Board {

namespace {

std::string bytesInWords(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

}  // namespace

std::string whyNotUsable(const std::vector<unsigned char>& bytes) {
    if (bytes.empty()) {
        return "the file is empty";
    }
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    const unsigned char* const magic = reader.readBytes(sizeof Host::MAGIC);
    if (reader.failed() || std::memcmp(magic, Host::MAGIC, sizeof Host::MAGIC) != 0) {
        return "it does not begin like a configuration file";
    }
    const std::uint32_t revision = reader.readU32();
    reader.readU32();
    reader.readU32();
    const std::uint64_t versionSize = reader.readU16();
    const std::uint64_t nameSize = reader.readU16();
    const std::uint64_t payloadSize = reader.readU32();
    if (reader.failed()) {
        return "it ends within its header";
    }
    if (revision != Host::REVISION) {
        return "its layout is of revision " + std::to_string(revision) + ", not " +
               std::to_string(Host::REVISION);
    }
    const std::uint64_t size =
        Host::HEADER_SIZE + versionSize + nameSize + payloadSize + Host::CHECKSUM_SIZE;
    if (size > bytes.size()) {
        return "it is cut off: by its header, it has " + bytesInWords(size - bytes.size()) +
               " more";
    }
    if (size < bytes.size()) {
        return bytesInWords(bytes.size() - size) + " follow its end";
    }
    if (versionSize > Host::LARGEST_VERSION || nameSize > Host::LARGEST_PARTITION_NAME) {
        return "a text of its header is too long";
    }
    return "its checksum does not match: some of its bytes were changed";
}

}  // namespace VeskLib::Board
