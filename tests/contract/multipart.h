#pragma once

#include "tests/support/ChildProcess.h"

#include <string>
#include <utility>
#include <vector>

namespace VeskLib::Test {

// Returns a posted form as browsers send it: the fields in order, then the file unless `fileName`
// is empty.
ChildSetup multipartRequest(const std::vector<std::pair<std::string, std::string>>& fields,
                            const std::string& fileName, const std::string& content);

}  // namespace VeskLib::Test
