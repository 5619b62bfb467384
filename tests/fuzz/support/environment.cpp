#include "tests/fuzz/support/environment.h"

#include "tests/support/TemporaryRoot.h"

#include <cstdlib>
#include <map>

namespace VeskLib::Fuzz {

void setVariable(const char* name, const std::string& value) {
    // setenv() leaks memory over millions of runs, because it keeps every value. putenv() makes the
    // environment point to `variable`, which must be unset before it changes.
    static auto& variables = *new std::map<std::string, std::string>;
    std::string& variable = variables[name];
    ::unsetenv(name);
    variable = std::string(name) + "=" + value;
    ::putenv(variable.data());
}

void useTemporaryRoot() {
    static const Test::TemporaryRoot ROOT({}, {});
}

}  // namespace VeskLib::Fuzz
