#pragma once

#include "platform/host/channel/BackendError.h"

#include <string>

namespace VeskLib::Board {

// Thrown where a request turns out not to be possible. The code travels to the client, the reason
// goes to the log only.
struct Refusal {
    Host::BackendError code;
    std::string reason;
};

}  // namespace VeskLib::Board
