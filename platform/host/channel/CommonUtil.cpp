#include <VeskLib/CommonUtil.h>

#include "platform/host/channel/BoardProperties.h"

namespace VeskLib {

unsigned int CommonUtil::getMaxPartitionNum() {
    return Host::boardProperties().maxPartitions;
}

}  // namespace VeskLib
