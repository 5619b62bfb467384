#include "tests/fuzz/support/environment.h"

#include "tests/support/TemporaryRoot.h"

#include <cstdlib>

namespace VeskLib::Fuzz {

void setVariable(const char* name, const std::string& value) {
    ::setenv(name, value.c_str(), 1);
}

void useTemporaryRoot() {
    static const Test::TemporaryRoot ROOT({}, {});
}

}  // namespace VeskLib::Fuzz
