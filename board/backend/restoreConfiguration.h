#pragma once

#include "board/backend/Answer.h"
#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "platform/host/audit/AuditEvent.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// A client's request. All members are borrowed.
struct RestoreRequest {
    const std::string& sessionIdentifier;  // its shape has been checked
    const std::string& stagedFile;         // identifies the file that the page showed; may be empty
    const std::vector<unsigned char>& targets;  // duplicates count once
    const IsAwaited& isAwaited;
};

// Gives all targets the configuration in the session's staged file, or none of them if it throws
// Refusal. Refuses a file other than the one that the page showed (BACKEND_OTHER_FILE). Immediately
// before the change, checks that the client is still connected (BACKEND_ABANDONED), because the
// page of a client that gave up says that the outcome is unknown.
//
// `lockPath` is the path of a file that is locked during a restore. If it is locked already, the
// restore is refused at once (BACKEND_RESTORE_BUSY).
//
// Completes `event` and records it twice: before any change, with the result "begun", and
// afterwards, with "done", "failed" or "refused". A restore that cannot be recorded is refused.
void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const RestoreRequest& request, Host::AuditEvent& event);

}  // namespace VeskLib::Board
