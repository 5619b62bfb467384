#pragma once

#include <functional>
#include <string>

namespace VeskLib::Test {

// Returns the output of `work` to std::cout. Exceptions of `work` propagate.
std::string printedBy(const std::function<void()>& work);

// Returns the output of a component or a generator.
template <typename Printable>
std::string printedHTML(const Printable& printable) {
    return printedBy([&printable] { printable.printHTML(); });
}

}  // namespace VeskLib::Test
