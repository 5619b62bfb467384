#pragma once

#include <functional>

namespace VeskLib::Test {

// Waits until the condition is true. Returns false if it is not within a time that is far above
// what any test needs on a busy machine.
bool happensInTime(const std::function<bool()>& condition);

}  // namespace VeskLib::Test
