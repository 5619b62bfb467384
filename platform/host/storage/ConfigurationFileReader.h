#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace VeskLib::Host {

// Checks an EFI configuration file piece by piece, so that the memory it takes does not grow with
// the file. The result does not depend on where the pieces end.
class ConfigurationFileReader {
public:
    // Takes the file's next bytes.
    void take(const unsigned char* bytes, std::size_t size);

    // Fills all of `file` but its payload, which it empties. False, with `file` unchanged, when
    // what was taken is not a configuration file, whole and undamaged.
    bool finish(ConfigurationFile& file) const;

private:
    bool isUndamaged() const;

    std::vector<unsigned char> head;  // as much of the start as a header may need
    // The last bytes, which the checksum of those before them stands in.
    std::array<unsigned char, CHECKSUM_SIZE> tail = {};
    std::size_t tailSize = 0;
    std::size_t fileSize = 0;
    std::uint32_t checksum = 0;  // of all but the tail
};

}  // namespace VeskLib::Host
