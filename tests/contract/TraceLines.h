#pragma once

#include <string>
#include <vector>

namespace VeskLib::Test {

// The trace log of the board, and what is added to it while the object lives.
class TraceLines {
public:
    TraceLines();

    // Returns false if the board's log is not a file that a test can read.
    bool isFile() const { return !path.empty(); }

    const std::string& hostPath() const { return path; }

    // Returns the lines that were added since the object was made.
    std::vector<std::string> added() const;

private:
    std::string path;
    std::string before;
};

}  // namespace VeskLib::Test
