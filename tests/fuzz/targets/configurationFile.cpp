// The configuration file: as it is, and with a matching checksum appended, because otherwise the
// fuzzer would never get past the checksum.

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
                      "a rejected file changes nothing");
        return;
    }
    Fuzz::require(bytes.size() <= Host::LARGEST_CONFIGURATION_FILE &&
                      file.version.size() <= Host::LARGEST_VERSION &&
                      file.partitionName.size() <= Host::LARGEST_PARTITION_NAME,
                  "an accepted file is within the limits");
    Fuzz::require(encode(file) == bytes, "an accepted file is written unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    check(bytes);
    Fuzz::appendChecksum(bytes);
    check(bytes);
    return 0;
}
