#pragma once

#include <VeskLib/Gui/CGIAuthority.h>
#include <VeskLib/Gui/CGIRequester.h>

namespace VeskLib::Gui {

// Determines whether the request's user may use a function.
class JudgeAuthority {
public:
    // `authority` must outlive the object. `partition` is the partition to use the function on, or
    // -1 for the whole server.
    JudgeAuthority(const CGIAuthority* authority, int functionNumber, int partition)
        : authority(authority), functionNumber(functionNumber), partition(partition) {}

    // Returns 1 if the user may use the function; after any other number, getDisplayMode()
    // decides.
    int preCheckDisplayMode(CGIRequester& requester);

    // Returns 0 if the user may not use the function, any other number if they may. After a 0,
    // CGIRequester::setInfo() sends nothing until the process ends.
    int getDisplayMode();

private:
    const CGIAuthority* authority;
    int functionNumber;
    int partition;
};

}  // namespace VeskLib::Gui
