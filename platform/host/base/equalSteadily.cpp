#include "platform/host/base/equalSteadily.h"

#include <algorithm>
#include <cstddef>

namespace VeskLib::Host {

bool equalSteadily(std::string_view one, std::string_view other) {
    unsigned int difference = one.size() == other.size() ? 0 : 1;
    const std::size_t common = std::min(one.size(), other.size());
    for (std::size_t i = 0; i < common; ++i) {
        difference |= static_cast<unsigned char>(one[i] ^ other[i]);
    }
    return difference == 0;
}

}  // namespace VeskLib::Host
