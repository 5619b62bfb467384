#pragma once

#include "data/uploadLimit.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// A complete EFI configuration file; docs/configuration-file.md describes the layout byte by byte.
struct ConfigurationFile {
    std::uint32_t revision = 1;  // of the layout; 1 is the only one
    std::uint32_t saveTime = 0;  // seconds since 1970-01-01 UTC
    std::uint32_t partition = 0;
    std::string version;        // BIOS version; at most 255 bytes
    std::string partitionName;  // UTF-8; at most 1023 bytes
    std::vector<unsigned char> payload;
};

inline constexpr std::size_t LARGEST_CONFIGURATION_FILE = VeskUi::LARGEST_UPLOAD;

inline constexpr std::size_t LARGEST_VERSION = 255;
inline constexpr std::size_t LARGEST_PARTITION_NAME = 1023;

// Constants of the layout.
inline constexpr unsigned char MAGIC[8] = {'E', 'F', 'I', 'C', 'O', 'N', 'F', 0x1A};
inline constexpr std::uint32_t REVISION = 1;
inline constexpr std::size_t HEADER_SIZE = 28;
inline constexpr std::size_t CHECKSUM_SIZE = 4;

// Returns the bytes of the file; an empty vector if a text or the file exceeds its limit.
std::vector<unsigned char> encode(const ConfigurationFile& file);

// Returns false and leaves `file` unchanged if the bytes are not a complete and undamaged
// configuration file.
bool decode(const std::vector<unsigned char>& bytes, ConfigurationFile& file);

// Returns the CRC-32 of ISO 3309: polynomial 0x04C11DB7 reflected, initial value and final XOR all
// ones. `before` is the CRC-32 of the preceding bytes.
std::uint32_t crc32(const unsigned char* bytes, std::size_t size, std::uint32_t before = 0);

}  // namespace VeskLib::Host
