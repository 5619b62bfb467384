#pragma once

#include "platform/host/base/RefusalDetails.h"
#include "platform/host/channel/BackendError.h"

#include <string>

namespace VeskLib::Board {

// Thrown where a request turns out not to be possible. Code and details travel to the client, the
// reason goes to the log only.
struct Refusal {
    Host::BackendError code;
    std::string reason;
    Host::RefusalDetails details = {};
};

}  // namespace VeskLib::Board
