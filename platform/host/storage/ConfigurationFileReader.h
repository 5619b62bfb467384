#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace VeskLib::Host {

// Checks an EFI configuration file piece by piece, so that its memory use does not grow with the
// file. The result does not depend on the sizes of the pieces.
class ConfigurationFileReader {
public:
    // Takes the file's next bytes.
    void take(const unsigned char* bytes, std::size_t size);

    // Sets all members of `file`; its payload becomes empty. Returns false and leaves `file`
    // unchanged if the bytes taken are not a complete and undamaged configuration file.
    bool finish(ConfigurationFile& file) const;

private:
    bool isUndamaged() const;

    std::vector<unsigned char> head;  // the first bytes, as many as the longest header needs
    // The last bytes, which contain the checksum of the bytes before them.
    std::array<unsigned char, CHECKSUM_SIZE> tail = {};
    std::size_t tailSize = 0;
    std::size_t fileSize = 0;
    std::uint32_t checksum = 0;  // of all bytes except the tail
};

}  // namespace VeskLib::Host
