#include "board/backend/KnownDevices.h"

#include <gtest/gtest.h>

#include <vector>

namespace VeskLib::Test {

using Board::KnownDevices;

TEST(KnownDevices, areKnownOnlyForTheirAccount) {
    KnownDevices devices;
    const std::string device = devices.add("admin");
    EXPECT_EQ(device.size(), 32U);
    EXPECT_TRUE(devices.isKnown("admin", device));
    EXPECT_FALSE(devices.isKnown("viewer", device));
    EXPECT_FALSE(devices.isKnown("admin", ""));
    EXPECT_FALSE(devices.isKnown("admin", device.substr(1)));
    EXPECT_NE(devices.add("admin"), device);
}

TEST(KnownDevices, dropLeastRecentlyUsedOfAccount) {
    KnownDevices devices;
    const std::string used = devices.add("admin");
    const std::string unused = devices.add("admin");
    const std::string others = devices.add("viewer");
    for (std::size_t i = 2; i < KnownDevices::MOST_OF_ACCOUNT; ++i) {
        devices.add("admin");
    }
    EXPECT_TRUE(devices.isKnown("admin", used));
    devices.add("admin");
    EXPECT_TRUE(devices.isKnown("admin", used));
    EXPECT_FALSE(devices.isKnown("admin", unused));
    EXPECT_TRUE(devices.isKnown("viewer", others));
}

TEST(KnownDevices, dropOldestAboveTotalLimit) {
    KnownDevices devices;
    std::vector<std::string> names;
    for (std::size_t i = 0; i <= KnownDevices::MOST_DEVICES; ++i) {
        names.push_back(devices.add(std::to_string(i)));
    }
    EXPECT_FALSE(devices.isKnown("0", names[0]));
    EXPECT_TRUE(devices.isKnown("1", names[1]));
}

}  // namespace VeskLib::Test
