#pragma once

#include <functional>

namespace VeskLib::Test {

// Waits until the condition is true. Returns false after a timeout that is far longer than any test
// needs on a busy machine.
bool happensInTime(const std::function<bool()>& condition);

}  // namespace VeskLib::Test
