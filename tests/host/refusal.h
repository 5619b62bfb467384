#pragma once

#include "platform/host/base/platformException.h"

#include <VeskLib/PException.h>

#include <string>

namespace VeskLib::Test {

// What tests note in the place of a result when there is none for this reason.
inline std::string refused(int code) {
    return "refused " + std::to_string(code);
}

// The detail of the exception that `work` throws; 0 when it throws none.
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
