// The file in which the back-end publishes the board's properties.

#include "platform/host/channel/BoardProperties.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Host::BoardProperties former = {.maxPartitions = 77, .hosts = {"former"}};
    Host::BoardProperties properties = former;
    if (!decode(Fuzz::bytesOf(data, size), properties)) {
        Fuzz::require(
            properties.maxPartitions == former.maxPartitions && properties.hosts == former.hosts,
            "rejected properties change nothing");
        return 0;
    }
    Host::BoardProperties again;
    Fuzz::require(decode(encode(properties), again), "properties that were written are accepted");
    Fuzz::require(
        again.maxPartitions == properties.maxPartitions && again.hosts == properties.hosts,
        "they have the same values");
    return 0;
}
