#include <VeskLib/CommonUtil.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib {

unsigned int CommonUtil::getMaxPartitionNum() {
    record("getMaxPartitionNum");
    auto& numbers = script().maxPartitionNumbers;
    const unsigned int number = numbers.front();
    if (numbers.size() > 1) {
        numbers.erase(numbers.begin());
    }
    return number;
}

}  // namespace VeskLib
