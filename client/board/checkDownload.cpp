#include "client/board/checkDownload.h"

#include "board/inspector/whyNotUsable.h"
#include "client/Failure.h"
#include "platform/host/html/escape.h"
#include "platform/host/storage/biosVersion.h"

namespace Efictl {

using VeskLib::Host::ConfigurationFile;
using VeskLib::Host::isKnownVersion;
using VeskLib::Host::makeVisible;

ConfigurationFile checkDownload(const Bytes& bytes, const PartitionRow& partition) {
    ConfigurationFile file;
    if (!decode(bytes, file)) {
        throw Failure(ExitCode::UNREACHABLE, "The board sent a file that cannot be used: " +
                                                 VeskLib::Board::whyNotUsable(bytes) + ".");
    }
    if (file.partition != partition.number) {
        throw Failure(ExitCode::UNREACHABLE, "The board sent the configuration of partition " +
                                                 std::to_string(file.partition) + " instead.");
    }
    if (isKnownVersion(partition.version) && makeVisible(file.version) != partition.version) {
        throw Failure(ExitCode::UNREACHABLE, "The board sent a file of BIOS version " +
                                                 file.version + ", but shows " + partition.version +
                                                 ".");
    }
    return file;
}

}  // namespace Efictl
