#include "tests/fuzz/support/require.h"

#include <cstdio>
#include <cstdlib>

namespace VeskLib::Fuzz {

void require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "This does not hold: %s\n", property);
        std::abort();
    }
}

}  // namespace VeskLib::Fuzz
