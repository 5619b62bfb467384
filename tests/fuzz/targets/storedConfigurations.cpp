// The back-end's state file: as it is, and with a matching checksum appended.

#include "board/backend/StoredConfigurations.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

namespace {

void check(const std::vector<unsigned char>& bytes) {
    Board::Payloads payloads = {{77, {}}};
    if (!Board::decode(bytes, payloads)) {
        Fuzz::require(payloads.size() == 1 && payloads.count(77) == 1,
                      "a rejected file changes nothing");
        return;
    }
    const std::vector<unsigned char> written = Board::encode(payloads);
    Fuzz::require(written.size() <= bytes.size(), "the written state is no larger than the input");
    Board::Payloads again;
    Fuzz::require(Board::decode(written, again) && again == payloads,
                  "an accepted state that is written again is read unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    check(bytes);
    Fuzz::appendChecksum(bytes);
    check(bytes);
    return 0;
}
