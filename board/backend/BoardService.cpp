#include "board/backend/BoardService.h"

#include "board/backend/Refusal.h"
#include "board/backend/backupConfiguration.h"
#include "board/backend/boardPackets.h"
#include "board/backend/controlOrder.h"
#include "board/backend/log.h"
#include "board/backend/restoreConfiguration.h"
#include "data/PrimitiveTypeArray.h"
#include "data/PrimitiveTypeWrapper.h"
#include "data/requestNumbers.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/channel/Login.h"
#include "platform/host/channel/refusalPayload.h"
#include "platform/host/session/Session.h"

#include <VeskLib/PException.h>

#include <ctime>
#include <exception>
#include <stdexcept>
#include <utility>

namespace VeskLib::Board {

namespace {

const std::size_t LONGEST_ORDER = 200;  // in the audit log; longer ones are malformed

// Returns the object in the payload. Throws Refusal if it is malformed or other bytes follow,
// because such a request is not to be trusted.
template <typename Object>
Object readPayload(const std::vector<unsigned char>& payload) {
    Object object;
    const auto size = static_cast<unsigned int>(payload.size());
    if (size < object.getSerializedSize() || !object.setSerialized(payload.data(), size) ||
        object.getSerializedSize() != size) {
        throw Refusal{Host::BACKEND_MALFORMED_REQUEST, "the payload is malformed"};
    }
    return object;
}

std::string nameOf(const Host::RequestFrame& request) {
    return request.kind == Host::RequestKind::LOGIN ? "login"
                                                    : "request " + hexadecimal(request.number);
}

Host::ReplyFrame refuse(const Host::RequestFrame& request, Host::BackendError code,
                        const std::string& reason, std::vector<unsigned char> details = {}) {
    logLine(nameOf(request) + " refused with " + std::to_string(code) + ": " + reason);
    return {code, std::move(details)};
}

Host::AuditEvent makeEvent(const char* name, const Host::RequestFrame& request) {
    Host::AuditEvent event;
    event.event = name;
    event.address = request.address;
    event.request = request.requestIdentifier;
    return event;
}

// Checks the user's right and fills in the event's user and session. The programs that request
// changes have checked the right already, but the back-end does not rely on what reaches its
// socket. Throws Refusal if the right is missing.
void requireRight(const BoardDescription& description, const std::string& sessionIdentifier,
                  int function, Host::AuditEvent& event) {
    Host::Session session;
    const User* const user = Host::findSessionByIdentifier(sessionIdentifier, session)
                                 ? description.findUser(session.user)
                                 : nullptr;
    if (user == nullptr) {
        throw Refusal{Host::BACKEND_NO_SESSION, "there is no such session"};
    }
    event.user = user->name;
    event.session = sessionIdentifier;
    if (!user->rights.allow(function)) {
        throw Refusal{Host::BACKEND_NOT_ALLOWED, "its user may not use the function"};
    }
}

void appendOrRefuse(const Host::AuditEvent& event) {
    try {
        Host::record(event);
    } catch (const PException&) {
        throw Refusal{Host::BACKEND_NOT_RECORDED, "the audit log cannot be written"};
    }
}

}  // namespace

BoardService::BoardService(const BoardDescription& description, ConfigurationStore& store,
                           FaultSwitches& switches, std::string restoreLockPath)
    : description(description),
      store(store),
      switches(switches),
      restoreLockPath(std::move(restoreLockPath)),
      authenticator(description) {
}

Host::ReplyFrame BoardService::answer(const Host::RequestFrame& request,
                                      const IsAwaited& isAwaited) {
    try {
        return {0, carryOut(request, isAwaited)};
    } catch (const Refusal& refusal) {
        return refuse(request, refusal.code, refusal.reason, encode(refusal.details));
    } catch (const PException& failure) {
        return refuse(request, Host::BACKEND_FAILED,
                      "exception " + std::to_string(failure.getExceptionDetail()));
    } catch (const std::exception& failure) {
        return refuse(request, Host::BACKEND_FAILED, failure.what());
    }
}

BoardService::Bytes BoardService::carryOut(const Host::RequestFrame& request,
                                           const IsAwaited& isAwaited) {
    switch (request.kind) {
        case Host::RequestKind::GET:
            return get(request);
        case Host::RequestKind::SET:
            set(request, isAwaited);
            return {};
        case Host::RequestKind::LOGIN:
            return login(request);
        case Host::RequestKind::CONTROL:
            return control(request);
    }
    throw Refusal{Host::BACKEND_MALFORMED_REQUEST, "unknown kind of request"};
}

BoardService::Bytes BoardService::get(const Host::RequestFrame& request) const {
    if (!request.payload.empty()) {
        throw Refusal{Host::BACKEND_MALFORMED_REQUEST, "a payload where none belongs"};
    }
    return packetFor(request.number, description);
}

void BoardService::set(const Host::RequestFrame& request, const IsAwaited& isAwaited) {
    switch (request.number) {
        case VeskUi::SET_BACKUP:
        case VeskUi::SET_RESTORE:
            break;
        default:
            throw Refusal{Host::BACKEND_UNKNOWN_REQUEST, "nothing to set under this number"};
    }
    const bool isBackup = request.number == VeskUi::SET_BACKUP;
    Host::AuditEvent event = makeEvent(isBackup ? "backup" : "restore", request);
    try {
        requireRight(description, request.sessionIdentifier,
                     isBackup ? Host::BACKUP_FUNCTION : Host::RESTORE_FUNCTION, event);
        isBackup ? backup(request, event) : restore(request, isAwaited, event);
    } catch (const Refusal& refusal) {
        // An event with a result has been recorded already.
        if (event.result.empty()) {
            event.result = "refused";
            event.code = refusal.code;
            Host::recordRefusal(event);
        }
        throw;
    }
}

BoardService::Bytes BoardService::login(const Host::RequestFrame& request) {
    Host::LoginRequest login;
    if (!decode(request.payload, login)) {
        throw Refusal{Host::BACKEND_MALFORMED_REQUEST, "the payload is malformed"};
    }
    const bool knownDevice = devices.isKnown(login.user, login.device);
    LoginThrottle::Pass pass(throttle, {.account = login.user,
                                        .address = login.origin,
                                        .device = knownDevice ? login.device : "",
                                        .browser = login.device,
                                        .guess = LoginThrottle::guessOf(login.password)});
    if (!pass.isAdmitted()) {
        throw Refusal{Host::BACKEND_LOGIN_TOO_SOON, "too many attempts wait"};
    }
    const User* user = authenticator.authenticate(login.user, login.password);
    if (user == nullptr) {
        // The name is not logged, because people type passwords into the wrong field.
        throw Refusal{Host::BACKEND_LOGIN_REFUSED, "wrong name or password"};
    }
    pass.succeeded();
    return encode(Host::LoginAnswer{knownDevice ? "" : devices.add(login.user)});
}

void BoardService::backup(const Host::RequestFrame& request, Host::AuditEvent& event) const {
    const auto partition = readPayload<VeskUi::PrimitiveTypeWrapper<unsigned int>>(request.payload);
    event.partitions = {partition.value};
    backupConfiguration(description, store, request.sessionIdentifier, partition.value,
                        std::time(nullptr), event);
}

void BoardService::restore(const Host::RequestFrame& request, const IsAwaited& isAwaited,
                           Host::AuditEvent& event) {
    const auto targets = readPayload<VeskUi::PrimitiveTypeArray<unsigned char>>(request.payload);
    event.partitions.assign(targets.records.begin(), targets.records.end());
    restoreConfiguration(description, store, switches, restoreLockPath,
                         {.sessionIdentifier = request.sessionIdentifier,
                          .stagedFile = request.stagedFile,
                          .targets = targets.records,
                          .isAwaited = isAwaited},
                         event);
}

BoardService::Bytes BoardService::control(const Host::RequestFrame& request) {
    if (!switches.areAllowed()) {
        throw Refusal{Host::BACKEND_FAULTS_NOT_ALLOWED, "started without --allow-faults"};
    }
    const std::string order(request.payload.begin(), request.payload.end());
    Host::AuditEvent event = makeEvent("fault_order", request);
    event.order = order.substr(0, LONGEST_ORDER);
    appendOrRefuse(event);
    try {
        const std::string answer = carryOutOrder(order, switches, [this](unsigned int partition) {
            return description.isInstalled(partition);
        });
        return {answer.begin(), answer.end()};
    } catch (const std::invalid_argument& problem) {
        throw Refusal{Host::BACKEND_MALFORMED_REQUEST, problem.what()};
    }
}

}  // namespace VeskLib::Board
