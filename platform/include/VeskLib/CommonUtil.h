#pragma once

namespace VeskLib {

class CommonUtil {
public:
    // Returns the maximum number of partitions, or 0 if the board does not know it. Partition
    // numbers run from 0 to this number minus 1. Throws PException if it cannot be read.
    static unsigned int getMaxPartitionNum();
};

}  // namespace VeskLib
