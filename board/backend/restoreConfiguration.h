#pragma once

#include "board/backend/Answer.h"
#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "platform/host/audit/AuditEvent.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// What a client asks for. Everything stays the caller's.
struct RestoreRequest {
    const std::string& sessionIdentifier;  // its shape has been checked
    const std::string& stagedFile;         // what names the file that the page showed; may be empty
    const std::vector<unsigned char>& targets;  // one that is named twice counts once
    const IsAwaited& isAwaited;
};

// Gives the targets the configuration in the session's staging file: all of them, or none when
// Refusal is thrown. Refuses another file than the page showed (BACKEND_OTHER_FILE). Directly
// before the change, checks that the client is still connected (BACKEND_ABANDONED): the page of one
// that has given up says that the outcome is not known.
//
// `lockPath` names the file that is locked during a restore. A restore that finds it locked is
// refused at once (BACKEND_RESTORE_BUSY).
//
// Completes `event` and records it twice: before anything is changed, with the result "begun", and
// afterwards, "done", "failed" or "refused". A restore that cannot be recorded is refused.
void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const RestoreRequest& request, Host::AuditEvent& event);

}  // namespace VeskLib::Board
