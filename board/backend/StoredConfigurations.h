#pragma once

#include <map>
#include <vector>

namespace VeskLib::Board {

// The EFI configuration of each partition.
using Payloads = std::map<unsigned int, std::vector<unsigned char>>;

// Returns the bytes of the state file; docs/configuration-file.md describes its layout.
std::vector<unsigned char> encode(const Payloads& payloads);

// Returns false and leaves `payloads` unchanged if the bytes are not a complete, undamaged state
// file.
bool decode(const std::vector<unsigned char>& bytes, Payloads& payloads);

}  // namespace VeskLib::Board
