#include <VeskLib/getCGIPath.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib {

std::string getCGIPath(const char* path) {
    record(std::string("getCGIPath ") + path);
    return script().pathPrefix + path;
}

}  // namespace VeskLib
