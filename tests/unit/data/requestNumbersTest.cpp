#include "data/requestNumbers.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

// The back-end identifies requests by these numbers.
TEST(RequestNumbersTest, matchBackEndNumbers) {
    EXPECT_EQ(VeskUi::GET_PARTITION_INFO, 33620015u);
    EXPECT_EQ(VeskUi::GET_HARD_INSTALL_INFO, 0x02010021u);
    EXPECT_EQ(VeskUi::GET_VERSION_INFO, 0x02010201u);
    EXPECT_EQ(VeskUi::SET_BACKUP, 0x020100A3u);
    EXPECT_EQ(VeskUi::SET_RESTORE, 0x020100A4u);
}

}  // namespace VeskLib::Test
