#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace VeskLib::Board {

struct Setting {
    std::string name;
    std::string value;
};

// A payload split into settings and other bytes. A setting is a line "name=value" of printable
// UTF-8 that ends with a line feed and has a non-empty name.
struct PayloadSettings {
    std::vector<Setting> settings;      // in the order of the payload
    std::vector<unsigned char> others;  // the bytes of everything else, in their order
};

PayloadSettings readSettings(const std::vector<unsigned char>& payload);

}  // namespace VeskLib::Board
