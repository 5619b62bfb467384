#include "board/control/describeFailure.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/SocketAddress.h"

#include <VeskLib/getCGIPath.h>

#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace VeskLib::Board {

namespace {

// Returns the errno of connecting to the socket; 0 if that succeeds now.
int tryToConnect(const std::string& path) {
    const Host::Descriptor descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    errno = 0;
    const Host::SocketAddress address(path);
    if (!address.isValid()) {
        return errno != 0 ? errno : ENAMETOOLONG;
    }
    return ::connect(descriptor.get(), address.get(), Host::SocketAddress::size()) == 0 ? 0 : errno;
}

std::string whyUnreachable(const std::string& socket) {
    const int reason = tryToConnect(socket);
    switch (reason) {
        case 0:
            return "it was not running a moment ago, but is now: try again";
        case ENOENT:
        case ENOTDIR:
            return "there is no such socket: the board is not running, or this is not its root "
                   "(--root, BOARD_ROOT)";
        case ECONNREFUSED:
            return "it is not running; only its socket is still there";
        case EACCES:
        case EPERM:
            return "no permission: use the account that runs the board";
        default:
            return std::strerror(reason);
    }
}

std::string describeChannelFailure(int code, const std::string& backend) {
    switch (code) {
        case Host::CHANNEL_TIMEOUT:
            return "no answer from " + backend + " in time";
        case Host::CHANNEL_BROKEN:
            return backend + " closed the connection without an answer";
        case Host::CHANNEL_MALFORMED:
            return backend + " sent an answer that is malformed";
        default:
            return backend + " cannot carry this out";
    }
}

}  // namespace

std::string describeFailure(int code) {
    const std::string socket = getCGIPath(Host::BACKEND_SOCKET);
    switch (code) {
        case Host::CHANNEL_UNREACHABLE:
            return "cannot connect to the back-end at " + socket + ": " + whyUnreachable(socket);
        case Host::BACKEND_FAULTS_NOT_ALLOWED:
            return "the back-end accepts no orders: start it with --allow-faults, which an "
                   "installed "
                   "board does not use";
        case Host::BACKEND_NO_PARTITION:
            return "there is no such partition: the board description has none of this number "
                   "that is installed";
        case Host::BACKEND_MALFORMED_REQUEST:
            return "the back-end refuses the order: a number is too large, such as a time above "
                   "600000 ms";
        default:
            return describeChannelFailure(code, "the back-end at " + socket);
    }
}

}  // namespace VeskLib::Board
