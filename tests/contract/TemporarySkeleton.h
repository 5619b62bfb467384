#pragma once

#include <string>

namespace VeskLib::Test {

// A skeleton file with a unique name under "/var/tmp", which exists on every board. Removed by the
// destructor.
class TemporarySkeleton {
public:
    explicit TemporarySkeleton(const std::string& content);
    TemporarySkeleton(const TemporarySkeleton&) = delete;
    TemporarySkeleton& operator=(const TemporarySkeleton&) = delete;
    ~TemporarySkeleton();

    // Returns the board's path, as HTMLCodeGenerator expects it.
    const std::string& path() const { return boardPath; }

private:
    std::string boardPath;
};

}  // namespace VeskLib::Test
