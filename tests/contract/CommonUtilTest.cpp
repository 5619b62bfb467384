#include <VeskLib/CommonUtil.h>

#include "tests/contract/platformSpecifics.h"

#include <gtest/gtest.h>

#include <iostream>

namespace VeskLib::Test {

TEST(CommonUtilTest, returnsMaxPartitionNumOfBoard) {
    const unsigned int expected = maxPartitionNum();
    const ChildResult result = runInChild([] {
        std::cout << CommonUtil::getMaxPartitionNum() << ' ' << CommonUtil::getMaxPartitionNum();
        return 0;
    });
    EXPECT_GT(expected, 0u);
    EXPECT_EQ(result.output, std::to_string(expected) + " " + std::to_string(expected));
}

}  // namespace VeskLib::Test
