#include "tests/backend/support/RootTest.h"

#include "tests/support/BoardTest.h"

namespace VeskLib::Test {

std::string RootTest::at(const std::string& name) {
    return boardFile("/var/tmp/") + name;
}

std::vector<std::string> RootTest::names() {
    return namesIn(boardFile("/var/tmp"));
}

void writeBytes(const std::string& path, const Bytes& bytes) {
    writeText(path, std::string(bytes.begin(), bytes.end()));
}

Bytes readBytes(const std::string& path) {
    const std::string text = readText(path);
    return {text.begin(), text.end()};
}

}  // namespace VeskLib::Test
