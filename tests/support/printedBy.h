#pragma once

#include <functional>
#include <string>

namespace VeskLib::Test {

// What `work` prints to std::cout. An exception that leaves it passes on.
std::string printedBy(const std::function<void()>& work);

// What a component or a generator prints.
template <typename Printable>
std::string printedHTML(const Printable& printable) {
    return printedBy([&printable] { printable.printHTML(); });
}

}  // namespace VeskLib::Test
