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
#include "platform/host/base/SessionShape.h"
#include "platform/host/channel/Login.h"

#include <VeskLib/PException.h>

#include <ctime>
#include <exception>
#include <stdexcept>
#include <utility>

namespace VeskLib::Board {

namespace {

std::vector<unsigned char> serialize(const VeskUi::SerializableObject& object) {
    std::vector<unsigned char> bytes(object.getSerializedSize());
    object.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return bytes;
}

template <typename Packet>
std::vector<unsigned char> makePacket(const BoardDescription& description) {
    Packet packet;
    fillPacket(description, packet);
    return serialize(packet);
}

// The object that the payload holds; exactly that, because a client that sends more than it means
// to cannot be trusted to mean what it sends.
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
                        const std::string& reason) {
    logLine(nameOf(request) + " refused with " + std::to_string(code) + ": " + reason);
    return {code, {}};
}

const std::string& sessionOf(const Host::RequestFrame& request) {
    if (!Host::isSessionIdentifier(request.sessionIdentifier)) {
        throw Refusal{Host::BACKEND_NO_SESSION, "it names no session"};
    }
    return request.sessionIdentifier;
}

}  // namespace

BoardService::BoardService(const BoardDescription& description, ConfigurationStore& store,
                           FaultSwitches& switches, std::string restoreLockPath)
    : description(description),
      store(store),
      switches(switches),
      restoreLockPath(std::move(restoreLockPath)),
      authenticator(description.users) {
}

Host::ReplyFrame BoardService::answer(const Host::RequestFrame& request) {
    try {
        return {0, carryOut(request)};
    } catch (const Refusal& refusal) {
        return refuse(request, refusal.code, refusal.reason);
    } catch (const PException& failure) {
        return refuse(request, Host::BACKEND_FAILED,
                      "exception " + std::to_string(failure.getExceptionDetail()));
    } catch (const std::exception& failure) {
        return refuse(request, Host::BACKEND_FAILED, failure.what());
    }
}

BoardService::Bytes BoardService::carryOut(const Host::RequestFrame& request) {
    switch (request.kind) {
        case Host::RequestKind::GET:
            return get(request);
        case Host::RequestKind::SET:
            set(request);
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
    switch (request.number) {
        case VeskUi::GET_PARTITION_INFO:
            return makePacket<VeskUi::PartitionInfoPacket>(description);
        case VeskUi::GET_HARD_INSTALL_INFO:
            return makePacket<VeskUi::HardInstallInfoPacket>(description);
        case VeskUi::GET_VERSION_INFO:
            return makePacket<VeskUi::VersionInfoPacket>(description);
        default:
            throw Refusal{Host::BACKEND_UNKNOWN_REQUEST, "nothing to get under this number"};
    }
}

void BoardService::set(const Host::RequestFrame& request) {
    switch (request.number) {
        case VeskUi::SET_BACKUP:
            backup(request);
            return;
        case VeskUi::SET_RESTORE:
            restore(request);
            return;
        default:
            throw Refusal{Host::BACKEND_UNKNOWN_REQUEST, "nothing to set under this number"};
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
        // Not even the name is logged: people type their password into the wrong field.
        throw Refusal{Host::BACKEND_LOGIN_REFUSED, "wrong name or password"};
    }
    pass.succeeded();
    return encode(Host::LoginAnswer{user->everyFunction, user->functions,
                                    knownDevice ? "" : devices.add(login.user)});
}

void BoardService::backup(const Host::RequestFrame& request) const {
    const std::string& session = sessionOf(request);
    const auto partition = readPayload<VeskUi::PrimitiveTypeWrapper<unsigned int>>(request.payload);
    backupConfiguration(description, store, session, partition.value, std::time(nullptr));
}

void BoardService::restore(const Host::RequestFrame& request) {
    const std::string& session = sessionOf(request);
    const auto targets = readPayload<VeskUi::PrimitiveTypeArray<unsigned char>>(request.payload);
    restoreConfiguration(description, store, switches, restoreLockPath, session, targets.records);
}

BoardService::Bytes BoardService::control(const Host::RequestFrame& request) {
    if (!switches.areAllowed()) {
        throw Refusal{Host::BACKEND_FAULTS_NOT_ALLOWED, "started without --allow-faults"};
    }
    try {
        const std::string answer =
            carryOutOrder({request.payload.begin(), request.payload.end()}, switches);
        return {answer.begin(), answer.end()};
    } catch (const std::invalid_argument& problem) {
        throw Refusal{Host::BACKEND_MALFORMED_REQUEST, problem.what()};
    }
}

}  // namespace VeskLib::Board
