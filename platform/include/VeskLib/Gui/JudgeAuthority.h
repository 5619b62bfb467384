#pragma once

#include <VeskLib/Gui/CGIAuthority.h>
#include <VeskLib/Gui/CGIRequester.h>

namespace VeskLib::Gui {

// Judges whether the request's user may use a function.
class JudgeAuthority {
public:
    // `authority` must outlive the object. `partition` narrows the question to one partition;
    // -1 asks about the whole server.
    JudgeAuthority(const CGIAuthority* authority, int functionNumber, int partition)
        : authority(authority), functionNumber(functionNumber), partition(partition) {}

    // 1 when the function is allowed without looking further, any other number when
    // getDisplayMode() decides.
    int preCheckDisplayMode(CGIRequester& requester);

    // Returns 0 when the user may not use the function, any other number when they may. A 0 also
    // closes the process's request channel for changes: no CGIRequester::setInfo() sends anything
    // from then on.
    int getDisplayMode();

private:
    const CGIAuthority* authority;
    int functionNumber;
    int partition;
};

}  // namespace VeskLib::Gui
