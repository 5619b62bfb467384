#pragma once

#include "data/uploadLimit.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// An EFI configuration file as a whole; docs/configuration-file.md gives the layout by bytes.
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

// Of the layout: what begins a file and what it consists of.
inline constexpr unsigned char MAGIC[8] = {'E', 'F', 'I', 'C', 'O', 'N', 'F', 0x1A};
inline constexpr std::uint32_t REVISION = 1;
inline constexpr std::size_t HEADER_SIZE = 28;
inline constexpr std::size_t CHECKSUM_SIZE = 4;

// The file's bytes; empty when a text, or the file as a whole, would be above its limit.
std::vector<unsigned char> encode(const ConfigurationFile& file);

// False, with `file` unchanged, when the bytes are not a configuration file, whole and undamaged.
bool decode(const std::vector<unsigned char>& bytes, ConfigurationFile& file);

// The CRC-32 of ISO 3309: polynomial 0x04C11DB7 reflected, initial value and final XOR all ones.
// `before` is the CRC-32 of the bytes in front of these.
std::uint32_t crc32(const unsigned char* bytes, std::size_t size, std::uint32_t before = 0);

}  // namespace VeskLib::Host
