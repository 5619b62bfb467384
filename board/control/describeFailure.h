#pragma once

#include <string>

namespace VeskLib::Board {

// Returns in words why an order was not carried out; `code` is that of Channel::exchange() and not
// 0. Tries to connect again to find the reason if the back-end could not be reached.
std::string describeFailure(int code);

}  // namespace VeskLib::Board
