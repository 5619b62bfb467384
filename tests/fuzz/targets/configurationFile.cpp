// The configuration file: as it is, and with the checksum that makes it pass for undamaged, or
// else no fuzzer would come behind that.

#include "platform/host/storage/ConfigurationFile.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

namespace {

void check(const std::vector<unsigned char>& bytes) {
    Host::ConfigurationFile file;
    file.saveTime = 77;
    if (!decode(bytes, file)) {
        Fuzz::require(file.saveTime == 77 && file.version.empty() && file.payload.empty(),
                      "a refused file changes nothing");
        return;
    }
    Fuzz::require(bytes.size() <= Host::LARGEST_CONFIGURATION_FILE &&
                      file.version.size() <= Host::LARGEST_VERSION &&
                      file.partitionName.size() <= Host::LARGEST_PARTITION_NAME,
                  "a file that was taken keeps the limits");
    Fuzz::require(encode(file) == bytes, "what was taken is written as it came");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    check(bytes);
    Fuzz::appendChecksum(bytes);
    check(bytes);
    return 0;
}
