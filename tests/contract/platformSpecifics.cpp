#include "tests/contract/platformSpecifics.h"

namespace VeskLib::Test {

std::string skeletonMark(const std::string& name) {
    return "{{" + name + "}}";
}

std::string clickAttribute() {
    return "data-click";
}

std::string traceFile() {
    return "/var/log/trace.log";
}

}  // namespace VeskLib::Test
