#pragma once

namespace VeskLib {

class CommonUtil {
public:
    // How many partitions the server can hold; partition numbers run from 0 to this minus 1.
    // 0 when the board does not know it. Throws PException when it cannot be read.
    static unsigned int getMaxPartitionNum();
};

}  // namespace VeskLib
