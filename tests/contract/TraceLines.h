#pragma once

#include <string>
#include <vector>

namespace VeskLib::Test {

// The board's trace log, and the lines added to it since construction.
class TraceLines {
public:
    TraceLines();

    // Returns false if the board's log is not a file that a test can read.
    bool isFile() const { return !path.empty(); }

    const std::string& hostPath() const { return path; }

    // Returns the lines added since construction.
    std::vector<std::string> added() const;

private:
    std::string path;
    std::string before;
};

}  // namespace VeskLib::Test
