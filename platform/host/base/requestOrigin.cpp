#include "platform/host/base/requestOrigin.h"

#include "platform/host/base/Environment.h"

#include <unistd.h>

#include <chrono>

namespace VeskLib::Host {

namespace {

std::string makeIdentifier() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(now).count()) +
           "-" + std::to_string(::getpid());
}

}  // namespace

std::string clientAddress() {
    return readEnvironment("REMOTE_ADDR");
}

const std::string& requestIdentifier() {
    static const std::string IDENTIFIER = makeIdentifier();
    return IDENTIFIER;
}

}  // namespace VeskLib::Host
