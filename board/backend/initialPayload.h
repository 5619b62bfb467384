#pragma once

#include <toml++/toml.h>

#include <vector>

namespace VeskLib::Board {

// The configuration that a partition holds before any was restored: one "name=value" line for each
// of `settings` (texts, numbers and flags) in the order of their names.
//
// Returns the first setting that cannot be written so (its name is empty or holds "=", it holds a
// control character, or its value is of another type), with `payload` unchanged; else null.
const toml::node* makeSettingLines(const toml::table& settings,
                                   std::vector<unsigned char>& payload);

// `count` bytes that look like anything but always are the same for the same `seed`.
std::vector<unsigned char> makeFillBytes(unsigned int count, unsigned int seed);

}  // namespace VeskLib::Board
