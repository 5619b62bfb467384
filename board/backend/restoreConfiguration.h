#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// Gives the partitions `targets` the configuration in the session's staging file: all of them, or
// none when Refusal is thrown. A target named twice counts once. `sessionIdentifier` must have been
// checked for its shape.
//
// `lockPath` names the file that is locked during a restore. A restore that finds it locked is
// refused at once (BACKEND_RESTORE_BUSY).
void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const std::string& sessionIdentifier,
                          const std::vector<unsigned char>& targets);

}  // namespace VeskLib::Board
