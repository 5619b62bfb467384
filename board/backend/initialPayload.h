#pragma once

#include <toml++/toml.h>

#include <vector>

namespace VeskLib::Board {

// Makes the initial configuration of a partition: one "name=value" line for each of `settings`
// (texts, numbers and flags), sorted by name.
//
// Returns null on success. Otherwise returns the first setting that cannot be written and leaves
// `payload` unchanged: its name is empty or contains "=", it contains a control character, or its
// value has another type.
const toml::node* makeSettingLines(const toml::table& settings,
                                   std::vector<unsigned char>& payload);

// Returns `count` bytes that look random but are always the same for the same `seed`.
std::vector<unsigned char> makeFillBytes(unsigned int count, unsigned int seed);

}  // namespace VeskLib::Board
