#pragma once

#include "tests/support/TemporaryRoot.h"
#include "tests/support/files.h"
#include "tests/unit/support/wireBytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace VeskLib::Test {

// Fixture that gives each test a board root of its own, with a folder to work in.
class RootTest : public testing::Test {
protected:
    // Returns the path of `name` in the folder.
    static std::string at(const std::string& name);

    // Returns the names in the folder, sorted.
    static std::vector<std::string> names();

private:
    const TemporaryRoot root = TemporaryRoot({}, {});
};

void writeBytes(const std::string& path, const Bytes& bytes);
Bytes readBytes(const std::string& path);

}  // namespace VeskLib::Test
