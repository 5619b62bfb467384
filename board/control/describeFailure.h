#pragma once

#include <string>

namespace VeskLib::Board {

// Returns a sentence that explains why an order failed. `code` is the result of
// Channel::exchange(), which must not be 0. If the back-end could not be reached, connects again to
// find the reason.
std::string describeFailure(int code);

}  // namespace VeskLib::Board
