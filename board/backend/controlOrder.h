#pragma once

#include "board/backend/FaultSwitches.h"

#include <string>

namespace VeskLib::Board {

// Carries out an order that boardctl sends: words between blanks, as docs/wire-formats.md lists
// them. Returns what boardctl shows, or throws std::invalid_argument with the reason when the
// order makes no sense; nothing has then been changed. The order "die" does not return.
std::string carryOutOrder(const std::string& order, FaultSwitches& switches);

}  // namespace VeskLib::Board
