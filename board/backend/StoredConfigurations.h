#pragma once

#include <map>
#include <vector>

namespace VeskLib::Board {

// The EFI configuration that each partition holds.
using Payloads = std::map<unsigned int, std::vector<unsigned char>>;

// The state file's bytes; docs/configuration-file.md gives its layout.
std::vector<unsigned char> encode(const Payloads& payloads);

// False, with `payloads` unchanged, when the bytes are not a state file, whole and undamaged.
bool decode(const std::vector<unsigned char>& bytes, Payloads& payloads);

}  // namespace VeskLib::Board
