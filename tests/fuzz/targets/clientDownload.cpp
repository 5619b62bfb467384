// A file from a board, as it is and with a matching checksum appended; the file netrc; and file
// names in a folder of backups.

#include "client/Failure.h"
#include "client/board/checkDownload.h"
#include "client/folder/BackupFolder.h"
#include "client/login/netrc.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace Efictl;
using namespace VeskLib;

namespace {

void check(const Bytes& bytes) {
    PartitionRow partition;
    partition.number = 3;
    partition.version = "1.23 B";
    try {
        const Host::ConfigurationFile file = checkDownload(bytes, partition);
        Fuzz::require(file.partition == partition.number, "the file belongs to the partition");
        Fuzz::require(encode(file) == bytes, "the file is stored unchanged");
    } catch (const Failure& failure) {
        Fuzz::require(failure.exitCode() == ExitCode::UNREACHABLE,
                      "an unusable file is reported as UNREACHABLE");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes = Fuzz::bytesOf(data, size);
    check(bytes);
    Fuzz::appendChecksum(bytes);
    check(bytes);
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (const std::optional<Credentials> found = findInNetrc(text, "board", "")) {
        Fuzz::require(!found->password.empty(), "an entry has a password");
    }
    if (const std::optional<BackupName> name = BackupName::parse(text)) {
        Fuzz::require(name->name == text && text.find('/') == std::string::npos,
                      "a backup's name has no path");
    }
    return 0;
}
