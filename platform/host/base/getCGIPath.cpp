#include <VeskLib/getCGIPath.h>

#include "platform/host/base/Environment.h"

namespace VeskLib {

std::string getCGIPath(const char* path) {
    return Host::readEnvironment("BOARD_ROOT") + path;
}

}  // namespace VeskLib
