#pragma once

#include "platform/host/base/platformException.h"

#include <VeskLib/PException.h>

#include <string>

namespace VeskLib::Test {

// Returns the text with which tests report a refusal with this code.
inline std::string refused(int code) {
    return "refused " + std::to_string(code);
}

// Returns the detail code of the exception that `work` throws, or 0 if it throws none.
template <typename Work>
int codeOf(const Work& work) {
    try {
        work();
    } catch (const PException& exception) {
        return exception.getExceptionDetail();
    }
    return 0;
}

inline const std::string MALFORMED = refused(Host::REQUEST_MALFORMED);
inline const std::string TOO_LARGE = refused(Host::REQUEST_TOO_LARGE);

}  // namespace VeskLib::Test
