#include <VeskLib/Gui/JudgeAuthority.h>

namespace VeskLib::Gui {

int JudgeAuthority::preCheckDisplayMode(CGIRequester& /*requester*/) {
    return authority->everyFunction != 0 ? 1 : 0;
}

// Rights do not differ between partitions here, so `partition` is not looked at.
int JudgeAuthority::getDisplayMode() {
    const bool listed =
        authority->functions != nullptr &&
        authority->functions->find("," + std::to_string(functionNumber) + ",") != std::string::npos;
    return listed ? 2 : 0;
}

}  // namespace VeskLib::Gui
