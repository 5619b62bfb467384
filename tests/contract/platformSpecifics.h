#pragma once

#include <string>

namespace VeskLib::Test {

// What no header of the platform says and the tests need all the same. Who brings the program to
// a board looks at these first.

// How a skeleton marks the place of the component `name`.
std::string skeletonMark(const std::string& name);

// The attribute in which a component prints the script call of a click.
std::string clickAttribute();

// The board's path of the trace log.
std::string traceFile();

}  // namespace VeskLib::Test
