#include "platform/host/base/idleWork.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace VeskLib::Test {

namespace {

int done = 0;

void work() {
    ++done;
}

void fail() {
    ++done;
    throw std::runtime_error("in the work");
}

}  // namespace

class IdleWorkTest : public testing::Test {
protected:
    IdleWorkTest() { done = 0; }
};

TEST_F(IdleWorkTest, isDoneOnce) {
    Host::planIdleWork(work);
    EXPECT_EQ(done, 0);
    Host::doIdleWork();
    Host::doIdleWork();
    EXPECT_EQ(done, 1);
}

TEST_F(IdleWorkTest, swallowsExceptions) {
    Host::planIdleWork(fail);
    Host::doIdleWork();
    Host::doIdleWork();
    EXPECT_EQ(done, 1);
}

}  // namespace VeskLib::Test
