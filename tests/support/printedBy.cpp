#include "tests/support/printedBy.h"

#include <iostream>
#include <memory>
#include <sstream>

namespace VeskLib::Test {

std::string printedBy(const std::function<void()>& work) {
    std::ostringstream printed;
    const auto restore = [](std::streambuf* original) { std::cout.rdbuf(original); };
    const std::unique_ptr<std::streambuf, decltype(restore)> original(
        std::cout.rdbuf(printed.rdbuf()), restore);
    work();
    return printed.str();
}

}  // namespace VeskLib::Test
