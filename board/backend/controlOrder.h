#pragma once

#include "board/backend/FaultSwitches.h"

#include <functional>
#include <string>

namespace VeskLib::Board {

// Carries out an order that boardctl sends: words between blanks, as docs/wire-formats.md lists
// them. Returns what boardctl shows, or throws std::invalid_argument with the reason when the
// order makes no sense, or Refusal when it is for a partition that is not installed; nothing has
// then been changed. Without `isInstalled`, every partition is taken. The order "die" does not
// return.
std::string carryOutOrder(const std::string& order, FaultSwitches& switches,
                          const std::function<bool(unsigned int)>& isInstalled = {});

}  // namespace VeskLib::Board
