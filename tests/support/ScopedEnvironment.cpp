#include "tests/support/ScopedEnvironment.h"

#include <cstdlib>

namespace VeskLib::Test {

namespace {

void assign(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name.c_str());
    }
}

}  // namespace

ScopedEnvironment::ScopedEnvironment(const std::string& name,
                                     const std::optional<std::string>& value)
    : name(name) {
    const char* current = std::getenv(name.c_str());
    if (current != nullptr) {
        former = current;
    }
    assign(name, value);
}

ScopedEnvironment::~ScopedEnvironment() {
    assign(name, former);
}

}  // namespace VeskLib::Test
