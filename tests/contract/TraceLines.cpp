#include "tests/contract/TraceLines.h"

#include "tests/contract/platformSpecifics.h"
#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>

namespace VeskLib::Test {

namespace {

std::string contentOf(const std::string& path) {
    return !path.empty() && exists(path) ? readText(path) : "";
}

}  // namespace

TraceLines::TraceLines()
    : path(traceFile().empty() ? "" : getCGIPath(traceFile().c_str())), before(contentOf(path)) {
}

std::vector<std::string> TraceLines::added() const {
    return linesOf(contentOf(path).substr(before.size()));
}

}  // namespace VeskLib::Test
