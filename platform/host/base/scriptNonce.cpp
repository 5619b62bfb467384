#include "platform/host/base/scriptNonce.h"

#include "platform/host/base/randomText.h"

namespace VeskLib::Host {

namespace {

const std::size_t NONCE_BYTES = 16;

std::string& storedNonce() {
    static std::string nonce;
    return nonce;
}

}  // namespace

const std::string& scriptNonce() {
    if (storedNonce().empty()) {
        storedNonce() = makeRandomText(NONCE_BYTES);
    }
    return storedNonce();
}

bool hasScriptNonce() {
    return !storedNonce().empty();
}

}  // namespace VeskLib::Host
