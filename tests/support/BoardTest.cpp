#include "tests/support/BoardTest.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace VeskLib::Test {

namespace {

namespace fs = std::filesystem;

}  // namespace

std::string boardFile(const std::string& path) {
    const char* root = std::getenv("BOARD_ROOT");
    if (root == nullptr) {
        throw std::runtime_error("BOARD_ROOT is not set");
    }
    return root + path;
}

BoardTest::BoardTest() {
    for (const char* folder : {"/var/lib/session", "/var/log", "/var/run", "/var/tmp"}) {
        const fs::path path = boardFile(folder);
        fs::remove_all(path);
        fs::create_directories(path);
    }
}

}  // namespace VeskLib::Test
