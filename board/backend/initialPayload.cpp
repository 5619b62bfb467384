#include "board/backend/initialPayload.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace VeskLib::Board {

namespace {

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

bool isOneLine(std::string_view text) {
    return std::none_of(text.begin(), text.end(), isControl);
}

// Converts a value to text. Returns false if its type is not supported or it is not one line.
bool writeValue(const toml::node& node, std::string& text) {
    if (const auto* value = node.as_string()) {
        text = value->get();
    } else if (const auto* number = node.as_integer()) {
        text = std::to_string(number->get());
    } else if (const auto* flag = node.as_boolean()) {
        text = flag->get() ? "true" : "false";
    } else {
        return false;
    }
    return isOneLine(text);
}

}  // namespace

const toml::node* makeSettingLines(const toml::table& settings,
                                   std::vector<unsigned char>& payload) {
    std::string lines;
    for (const auto& [key, node] : settings) {
        const std::string_view name = key.str();
        std::string value;
        if (name.empty() || name.find('=') != std::string_view::npos || !isOneLine(name) ||
            !writeValue(node, value)) {
            return &node;
        }
        lines.append(name).append("=").append(value).append("\n");
    }
    payload.assign(lines.begin(), lines.end());
    return nullptr;
}

std::vector<unsigned char> makeFillBytes(unsigned int count, unsigned int seed) {
    std::vector<unsigned char> bytes(count);
    // Uses the high bits of a linear congruential generator, because they vary most.
    std::uint32_t state = seed;
    for (unsigned char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return bytes;
}

}  // namespace VeskLib::Board
