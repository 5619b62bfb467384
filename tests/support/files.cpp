#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace VeskLib::Test {

std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path << " cannot be read";
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeText(const std::string& path, std::string_view text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    EXPECT_TRUE(file.good()) << path << " cannot be written";
}

void writePrivateText(const std::string& path, std::string_view text) {
    writeText(path, text);
    std::filesystem::permissions(
        path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names = pathsIn(folder);
    for (std::string& name : names) {
        name.erase(0, name.rfind('/') + 1);
    }
    return names;
}

std::vector<std::string> pathsIn(const std::string& folder) {
    std::vector<std::string> paths;
    for (const std::filesystem::directory_entry& entry :
         std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

bool exists(const std::string& path) {
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0;
}

}  // namespace VeskLib::Test
