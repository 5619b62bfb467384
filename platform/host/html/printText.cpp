#include "platform/host/html/printText.h"

#include <iostream>

namespace VeskLib::Host {

void printText(std::string_view text) {
    std::cout.rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace VeskLib::Host
