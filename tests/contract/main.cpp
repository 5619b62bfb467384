#include "tests/contract/TimeLimit.h"
#include "tests/support/TemporaryRoot.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// The slowest test waits for a silent back-end: 10 s on the host. The rest is a margin for slow
// machines.
const unsigned int TEST_SECONDS = 60;

}  // namespace

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    testing::UnitTest::GetInstance()->listeners().Append(
        std::make_unique<VeskLib::Test::TimeLimit>(TEST_SECONDS).release());
    std::unique_ptr<VeskLib::Test::TemporaryRoot> root;
#ifdef CATALOGUE_FOLDER
    root = std::make_unique<VeskLib::Test::TemporaryRoot>(
        std::vector<std::string>{CATALOGUE_FOLDER},
        std::vector<std::string>{PROGRAM_SKELETONS, PLATFORM_SKELETONS});
#endif
    return RUN_ALL_TESTS();
}
