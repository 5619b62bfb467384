#include <VeskLib/Gui/JudgeAuthority.h>

#include "platform/host/channel/changes.h"

namespace VeskLib::Gui {

int JudgeAuthority::preCheckDisplayMode(CGIRequester& /*requester*/) {
    return authority->everyFunction != 0 ? 1 : 0;
}

// The pages look at the display mode only when they build their forms, after the posted action.
// Changes are therefore forbidden here, in the request channel.
//
// `partition` is not used, because a user has the same rights on every partition.
int JudgeAuthority::getDisplayMode() {
    const bool listed =
        authority->functions != nullptr &&
        authority->functions->find("," + std::to_string(functionNumber) + ",") != std::string::npos;
    if (!listed) {
        Host::forbidChanges();
    }
    return listed ? 2 : 0;
}

}  // namespace VeskLib::Gui
