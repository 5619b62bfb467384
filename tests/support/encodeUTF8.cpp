#include "tests/support/encodeUTF8.h"

namespace VeskLib::Test {

std::string encodeUTF8(unsigned long code) {
    if (code < 0x80) {
        return {static_cast<char>(code)};
    }
    const auto following = [code](int shift) {
        return static_cast<char>(0x80 | (code >> shift & 0x3F));
    };
    if (code < 0x800) {
        return {static_cast<char>(0xC0 | code >> 6), following(0)};
    }
    if (code < 0x10000) {
        return {static_cast<char>(0xE0 | code >> 12), following(6), following(0)};
    }
    return {static_cast<char>(0xF0 | code >> 18), following(12), following(6), following(0)};
}

}  // namespace VeskLib::Test
