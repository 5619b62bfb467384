#include <VeskLib/Gui/JudgeAuthority.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

// Records the authority's first field, the function number and the partition.
int JudgeAuthority::preCheckDisplayMode(CGIRequester& /*requester*/) {
    record(describe("preCheckDisplayMode", authority->everyFunction, functionNumber, partition));
    return script().preCheckDisplayMode;
}

int JudgeAuthority::getDisplayMode() {
    record(describe("getDisplayMode", authority->everyFunction, functionNumber, partition));
    return script().displayMode;
}

}  // namespace VeskLib::Gui
