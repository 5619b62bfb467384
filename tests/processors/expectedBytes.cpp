#include "tests/processors/expectedBytes.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace VeskLib::Test {

void expectBytes(const std::string& text, const std::string& name) {
    const std::string path = EXPECTED + ("/" + name);
    if (std::getenv("RENEW_EXPECTED") != nullptr) {
        writeText(path, text);
    }
    EXPECT_EQ(text, readText(path));
}

}  // namespace VeskLib::Test
