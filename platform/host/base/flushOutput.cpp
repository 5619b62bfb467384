#include "platform/host/base/flushOutput.h"

#include <cerrno>
#include <cstring>
#include <iostream>

namespace VeskLib::Host {

bool flushOutput(const char* program) {
    errno = 0;
    if (std::cout.flush()) {
        return true;
    }
    std::cerr << program << ": the answer could not be printed";
    if (errno != 0) {
        std::cerr << ": " << std::strerror(errno);
    }
    std::cerr << '\n';
    return false;
}

}  // namespace VeskLib::Host
