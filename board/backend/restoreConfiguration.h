#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "platform/host/audit/AuditEvent.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// Gives the partitions `targets` the configuration in the session's staging file: all of them, or
// none when Refusal is thrown. A target named twice counts once. `sessionIdentifier` must have been
// checked for its shape.
//
// `lockPath` names the file that is locked during a restore. A restore that finds it locked is
// refused at once (BACKEND_RESTORE_BUSY).
//
// Completes `event` and records it twice: before anything is changed, with the result "begun", and
// afterwards, "done" or "failed". A restore that cannot be recorded is refused.
void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const std::string& sessionIdentifier,
                          const std::vector<unsigned char>& targets, Host::AuditEvent& event);

}  // namespace VeskLib::Board
