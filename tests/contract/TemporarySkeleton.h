#pragma once

#include <string>

namespace VeskLib::Test {

// A skeleton file under "/var/tmp", which every board has, with a name that no other has.
class TemporarySkeleton {
public:
    explicit TemporarySkeleton(const std::string& content);
    TemporarySkeleton(const TemporarySkeleton&) = delete;
    TemporarySkeleton& operator=(const TemporarySkeleton&) = delete;
    ~TemporarySkeleton();

    // The board's path, as a generator takes it.
    const std::string& path() const { return boardPath; }

private:
    std::string boardPath;
};

}  // namespace VeskLib::Test
