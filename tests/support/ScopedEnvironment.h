#pragma once

#include <optional>
#include <string>

namespace VeskLib::Test {

// Sets an environment variable, or unsets it if there is no value. The destructor restores it.
class ScopedEnvironment {
public:
    ScopedEnvironment(const std::string& name, const std::optional<std::string>& value);
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment();

private:
    std::string name;
    std::optional<std::string> former;
};

}  // namespace VeskLib::Test
