#include "tests/fuzz/support/require.h"

#include <cstdio>
#include <cstdlib>

namespace VeskLib::Fuzz {

void require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "Property violated: %s\n", property);
        std::abort();
    }
}

}  // namespace VeskLib::Fuzz
