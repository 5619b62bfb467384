#include <VeskLib/CommonUtil.h>

#include "platform/host/channel/BoardProperties.h"

namespace VeskLib {

unsigned int CommonUtil::getMaxPartitionNum() {
    // Asked before every row of a table; a number that changed half-way would tear the table.
    return Host::boardProperties().maxPartitions;
}

}  // namespace VeskLib
