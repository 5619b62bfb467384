#include "tests/support/TemporaryRoot.h"

#include <gtest/gtest.h>

#include <memory>

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    std::unique_ptr<VeskLib::Test::TemporaryRoot> root;
#ifdef CATALOGUE_FOLDER
    root = std::make_unique<VeskLib::Test::TemporaryRoot>(
        std::vector<std::string>{CATALOGUE_FOLDER},
        std::vector<std::string>{PROGRAM_SKELETONS, PLATFORM_SKELETONS});
#endif
    return RUN_ALL_TESTS();
}
