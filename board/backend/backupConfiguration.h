#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <string>

namespace VeskLib::Board {

// Writes the configuration of `partition` into the session's backup file, which is replaced as a
// whole. Throws Refusal when the partition is not installed or the file cannot be written.
// `sessionIdentifier` must have been checked for its shape. Completes `event` and records it; a
// backup that cannot be recorded is removed and refused.
void backupConfiguration(const BoardDescription& description, const ConfigurationStore& store,
                         const std::string& sessionIdentifier, unsigned int partition,
                         std::time_t now, Host::AuditEvent& event);

}  // namespace VeskLib::Board
