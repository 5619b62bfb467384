// A request frame, answered by the back-end of a small board with one user. An input is the frame
// without its length prefix.

#include "board/backend/BoardService.h"
#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "platform/host/channel/Login.h"
#include "tests/backend/support/sampleBoard.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>
#include <VeskLib/getCGIPath.h>

#include <fcntl.h>
#include <unistd.h>

using namespace VeskLib;
using Host::RequestKind;
using Bytes = std::vector<unsigned char>;

namespace {

Board::BoardDescription makeBoard() {
    Board::BoardDescription description = Test::makeSampleBoard();
    // The hash of "secret", by a method that is cheap to compute.
    description.users.push_back({"admin", "abNANd1rDfiNc", {true, ""}});
    return description;
}

// The back-end with everything that it needs. Its log of refusals is discarded.
struct Backend {
    Backend() { service.end(); }  // no login waits

    Host::ReplyFrame answer(const Host::RequestFrame& request) {
        const int shown = ::dup(STDERR_FILENO);
        ::dup2(hidden, STDERR_FILENO);
        Host::ReplyFrame reply = service.answer(request);
        ::dup2(shown, STDERR_FILENO);
        ::close(shown);
        return reply;
    }

    Board::BoardDescription description = makeBoard();
    Board::ConfigurationStore store{getCGIPath("/var/tmp/configurations"), description};
    Board::FaultSwitches switches{true};
    Board::BoardService service{description, store, switches, getCGIPath("/var/run/restore.lock")};
    int hidden = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
};

// Returns true if the order would end the process.
bool isDeadly(const Host::RequestFrame& request) {
    const std::string order(request.payload.begin(), request.payload.end());
    return request.kind == RequestKind::CONTROL && order.find("die") != std::string::npos;
}

template <typename Packet>
bool isExactly(const Bytes& payload) {
    Packet packet;
    return packet.setSerialized(payload.data(), static_cast<unsigned int>(payload.size()));
}

// Returns true if the client can parse the answer.
bool isUsable(const Host::RequestFrame& request, const Bytes& payload) {
    Host::LoginAnswer answer;
    switch (request.kind) {
        case RequestKind::LOGIN:
            return decode(payload, answer);
        case RequestKind::SET:
            return payload.empty();
        case RequestKind::CONTROL:
            return true;
        case RequestKind::GET:
            break;
    }
    return request.number == VeskUi::GET_PARTITION_INFO
               ? isExactly<VeskUi::PartitionInfoPacket>(payload)
           : request.number == VeskUi::GET_HARD_INSTALL_INFO
               ? isExactly<VeskUi::HardInstallInfoPacket>(payload)
               : request.number == VeskUi::GET_VERSION_INFO &&
                     isExactly<VeskUi::VersionInfoPacket>(payload);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    static Backend backend;
    Host::RequestFrame request;
    if (!decode(Fuzz::bytesOf(data, size), request) || isDeadly(request)) {
        return 0;
    }
    const Host::ReplyFrame reply = backend.answer(request);
    if (reply.errorCode != 0) {
        Fuzz::require(reply.errorCode >= 1000 && reply.errorCode < 2000, "a refusal has a code");
        Fuzz::require(reply.payload.empty(), "a refusal has no payload");
    } else {
        Fuzz::require(isUsable(request, reply.payload), "the client can parse the answer");
    }
    Fuzz::require(encode(reply).size() <= Host::LARGEST_FRAME, "an answer fits into a frame");
    backend.switches.reset();
    return 0;
}
