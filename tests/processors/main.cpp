#include "tests/support/TemporaryRoot.h"

#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    const VeskLib::Test::TemporaryRoot root({CATALOGUE_FOLDER},
                                            {PROGRAM_SKELETONS, PLATFORM_SKELETONS});
    return RUN_ALL_TESTS();
}
