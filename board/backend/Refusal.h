#pragma once

#include "platform/host/base/RefusalDetails.h"
#include "platform/host/channel/BackendError.h"

#include <string>

namespace VeskLib::Board {

// Thrown if a request cannot be carried out. Code and details are sent to the client; the reason is
// only logged.
struct Refusal {
    Host::BackendError code;
    std::string reason;
    Host::RefusalDetails details = {};
};

}  // namespace VeskLib::Board
