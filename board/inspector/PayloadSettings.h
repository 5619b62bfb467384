#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace VeskLib::Board {

struct Setting {
    std::string name;
    std::string value;
};

// A payload taken apart. A setting is a line "name=value" with a line feed at its end, printable
// UTF-8 with a name that is not empty.
struct PayloadSettings {
    std::vector<Setting> settings;      // in the order of the payload
    std::vector<unsigned char> others;  // the bytes of everything else, in their order
};

PayloadSettings readSettings(const std::vector<unsigned char>& payload);

}  // namespace VeskLib::Board
