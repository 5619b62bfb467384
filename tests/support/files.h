#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// Returns the content of a file. If it cannot be read, fails the test and returns "".
std::string readText(const std::string& path);

// Creates or overwrites a file. Fails the test on errors.
void writeText(const std::string& path, std::string_view text);

// Same as writeText(), with mode 0600.
void writePrivateText(const std::string& path, std::string_view text);

// Return the sorted names, or full paths, of the entries of a folder.
std::vector<std::string> namesIn(const std::string& folder);
std::vector<std::string> pathsIn(const std::string& folder);

// Returns the lines of a text without their line breaks, including an unterminated last line.
std::vector<std::string> linesOf(const std::string& text);

// Returns true if the path exists. Does not follow a symbolic link.
bool exists(const std::string& path);

}  // namespace VeskLib::Test
