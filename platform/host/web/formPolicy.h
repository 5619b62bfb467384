#pragma once

#include "platform/host/web/FormLimits.h"

#include <cstddef>

namespace VeskLib::Host {

// What this process takes of the request's form.
struct FormPolicy {
    enum class File {
        STORED,
        COUNTED,  // its size is known, its bytes are not kept
        REFUSED,  // its bytes count as those of a field
    };

    std::size_t bodyLength = FormLimits::BODY_LENGTH;
    File file = File::STORED;
};

// The policy that FormInfo goes by when it reads the request.
FormPolicy& formPolicy();

}  // namespace VeskLib::Host
