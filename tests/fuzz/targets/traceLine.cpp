// A text in the trace, which must stay one line whatever a request contained.

#include "platform/host/base/SystemPath.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <algorithm>

using namespace VeskLib;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    const std::string path = getCGIPath(Host::TRACE_FILE);
    Test::writeText(path, "");
    trace::VeskTrace(1, 2, 3).putLog(4, Fuzz::textOf(data, size).c_str());

    const std::string trace = Test::readText(path);
    Fuzz::require(std::count(trace.begin(), trace.end(), '\n') == 1 && trace.ends_with('\n'),
                  "a text is one line");
    Fuzz::require(std::all_of(trace.begin(), trace.end() - 1,
                              [](char character) {
                                  const auto byte = static_cast<unsigned char>(character);
                                  return byte >= 0x20 && byte != 0x7F;
                              }),
                  "a line contains no control character");
    Fuzz::require(trace.size() <= 100 + 4 * 2048, "the length of a line is bounded");
    return 0;
}
