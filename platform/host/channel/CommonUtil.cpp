#include <VeskLib/CommonUtil.h>

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>

#include <cerrno>

namespace VeskLib {

namespace {

// Far above what the back-end writes.
const std::size_t LARGEST_PROPERTIES = 4096;

unsigned int readMaxPartitions() {
    Host::BoardProperties properties;
    std::vector<unsigned char> bytes;
    if (Host::readFile(getCGIPath(Host::BOARD_PROPERTIES), LARGEST_PROPERTIES, bytes)) {
        decode(bytes, properties);
    } else if (errno != ENOENT) {
        // Not the same as a board without partitions, which is what 0 would read as.
        throw Host::makePlatformException(Host::FILE_NOT_READABLE, "CommonUtil: board properties");
    }
    return properties.maxPartitions;
}

}  // namespace

unsigned int CommonUtil::getMaxPartitionNum() {
    // Asked before every row of a table; a number that changed half-way would tear the table.
    static const unsigned int MAX_PARTITIONS = readMaxPartitions();
    return MAX_PARTITIONS;
}

}  // namespace VeskLib
