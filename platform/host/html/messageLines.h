#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// The lines of a message whose texts are joined by "<br>".
std::vector<std::string> splitMessage(const std::string& message);

// Prints each line as a paragraph, escaped.
void printMessage(const std::string& message);

}  // namespace VeskLib::Host
