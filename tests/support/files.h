#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// The content of a file; a test failure and "" when it cannot be read.
std::string readText(const std::string& path);

// Writes a file anew.
void writeText(const std::string& path, std::string_view text);

// The same, for the file's owner only.
void writePrivateText(const std::string& path, std::string_view text);

// What a folder holds, sorted: the names, or the whole paths.
std::vector<std::string> namesIn(const std::string& folder);
std::vector<std::string> pathsIn(const std::string& folder);

// The lines of a text, without their ends. A last line that has no end counts as well.
std::vector<std::string> linesOf(const std::string& text);

bool exists(const std::string& path);

}  // namespace VeskLib::Test
