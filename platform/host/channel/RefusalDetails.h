#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// Which partitions stand in the way of a refused change; the payload of the reply that refuses it.
// docs/wire-formats.md gives the layout by bytes.
struct RefusalDetails {
    struct Partition {
        std::uint32_t number = 0;
        std::string version;  // of its BIOS, where the code is about versions; else empty
    };

    std::string fileVersion;  // that the staged file holds, where the code is about versions
    std::vector<Partition> partitions;  // by number
};

// No bytes without partitions.
std::vector<unsigned char> encode(const RefusalDetails& details);

// Returns false, with `details` unchanged, when the bytes are not exactly one such object.
bool decode(const std::vector<unsigned char>& bytes, RefusalDetails& details);

// The details of the last request of this process that the back-end refused with `code`; without
// partitions when its last refusal had another code or told none.
const RefusalDetails& refusalDetails(int code);

// Notes what the back-end answered to the last request. Bytes that cannot be read tell nothing.
void noteRefusal(int code, const std::vector<unsigned char>& payload);

}  // namespace VeskLib::Host
