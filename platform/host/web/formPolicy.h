#pragma once

#include "platform/host/web/FormLimits.h"

#include <cstddef>

namespace VeskLib::Host {

// What this process accepts in a posted form.
struct FormPolicy {
    enum class File {
        STORED,
        COUNTED,  // only the size is kept, not the bytes
        REFUSED,  // treated as a field, with a field's limits
    };

    std::size_t bodyLength = FormLimits::BODY_LENGTH;
    File file = File::STORED;
};

// Returns the policy that FormInfo applies when it reads the request.
FormPolicy& formPolicy();

}  // namespace VeskLib::Host
