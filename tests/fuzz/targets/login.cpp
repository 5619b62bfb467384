// The payloads of a login request and of its reply.

#include "platform/host/channel/Login.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

namespace {

template <typename Payload>
bool isTaken(const std::vector<unsigned char>& bytes) {
    Payload payload;
    if (!decode(bytes, payload)) {
        Fuzz::require(encode(payload) == encode(Payload()), "a rejected payload changes nothing");
        return false;
    }
    Fuzz::require(encode(payload) == bytes, "an accepted payload is written unchanged");
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    isTaken<Host::LoginRequest>(bytes);
    isTaken<Host::LoginAnswer>(bytes);
    return 0;
}
