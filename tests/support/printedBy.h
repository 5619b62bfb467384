#pragma once

#include <functional>
#include <string>

namespace VeskLib::Test {

// Returns what `work` prints to std::cout. Exceptions of `work` propagate.
std::string printedBy(const std::function<void()>& work);

// Returns what a component or a generator prints.
template <typename Printable>
std::string printedHTML(const Printable& printable) {
    return printedBy([&printable] { printable.printHTML(); });
}

}  // namespace VeskLib::Test
