#pragma once

#include "board/backend/Answer.h"
#include "board/backend/Authenticator.h"
#include "board/backend/BoardDescription.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "board/backend/KnownDevices.h"
#include "board/backend/LoginThrottle.h"
#include "platform/host/audit/AuditEvent.h"
#include "platform/host/channel/Frame.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// Answers the requests of the back-end channel. May be used by several threads at once.
class BoardService {
public:
    // `description`, `store` and `switches` must outlive the object. `restoreLockPath` names the
    // file that is locked while a restore is under way.
    BoardService(const BoardDescription& description, ConfigurationStore& store,
                 FaultSwitches& switches, std::string restoreLockPath);

    // Carries out `request` and returns the reply. Logs a refused request with the reason. Refuses
    // a restore if its client disconnects before it takes effect.
    Host::ReplyFrame answer(
        const Host::RequestFrame& request, const IsAwaited& isAwaited = [] { return true; });

    // Refuses waiting logins. Called when the back-end ends.
    void end() { throttle.end(); }

private:
    using Bytes = std::vector<unsigned char>;

    Bytes carryOut(const Host::RequestFrame& request, const IsAwaited& isAwaited);
    Bytes get(const Host::RequestFrame& request) const;
    void set(const Host::RequestFrame& request, const IsAwaited& isAwaited);
    Bytes login(const Host::RequestFrame& request);
    void backup(const Host::RequestFrame& request, Host::AuditEvent& event) const;
    void restore(const Host::RequestFrame& request, const IsAwaited& isAwaited,
                 Host::AuditEvent& event);
    Bytes control(const Host::RequestFrame& request);

    const BoardDescription& description;
    ConfigurationStore& store;
    FaultSwitches& switches;
    const std::string restoreLockPath;
    Authenticator authenticator;
    LoginThrottle throttle;
    KnownDevices devices;
};

}  // namespace VeskLib::Board
