#pragma once

#include "board/backend/FaultSwitches.h"

#include <functional>
#include <string>

namespace VeskLib::Board {

// Carries out an order of boardctl: words separated by blanks, as listed in docs/wire-formats.md.
// Returns the text that boardctl shows. Throws std::invalid_argument with the reason if the order
// is malformed, or Refusal if it is for a partition that is not installed; nothing is changed then.
// Without `isInstalled`, every partition is accepted. The order "die" does not return.
std::string carryOutOrder(const std::string& order, FaultSwitches& switches,
                          const std::function<bool(unsigned int)>& isInstalled = {});

}  // namespace VeskLib::Board
