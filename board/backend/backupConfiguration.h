#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <string>

namespace VeskLib::Board {

// Writes the configuration of `partition` to the session's backup file, which is replaced
// atomically. `sessionIdentifier` must have been checked for its shape. Completes `event` and
// records it. Throws Refusal if the partition is not installed, or if the file cannot be written or
// the event cannot be recorded; in the last case the file is removed.
void backupConfiguration(const BoardDescription& description, const ConfigurationStore& store,
                         const std::string& sessionIdentifier, unsigned int partition,
                         std::time_t now, Host::AuditEvent& event);

}  // namespace VeskLib::Board
