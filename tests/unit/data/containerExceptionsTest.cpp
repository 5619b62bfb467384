#include "data/containerExceptions.h"

#include "tests/unit/support/wireBytes.h"

namespace VeskLib::Test {

TEST(ContainerExceptionsTest, bufferTooSmallNamesContainerModule) {
    const PException exception = VeskUi::makeBufferTooSmall(23296, "text");
    EXPECT_EQ(
        argumentsOf(exception, 1),
        (ExceptionArguments{{1, 80, 23296, 1, 1537, 20019}, {"text"}, {0, 0, 0, 0, 0, 0, 0}}));
}

TEST(ContainerExceptionsTest, differentBufferSizeNamesOperation) {
    const PException exception = VeskUi::makeDifferentBufferSize("operation");
    EXPECT_EQ(argumentsOf(exception, 2), (ExceptionArguments{{1, 80, 2560, 1, 1537, 20010},
                                                             {"operation", "Different Buffer Size"},
                                                             {0, 0, 0, 0, 0, 0}}));
}

// The exception stores the pointer only, so a static text stays valid in every copy.
TEST(ContainerExceptionsTest, carriesTextByPointer) {
    static const char TEXT[] = "constant text";
    const PException copy = PException(VeskUi::makeBufferTooSmall(19200, TEXT));
    EXPECT_EQ(copy.getArgument(0), reinterpret_cast<long>(&TEXT[0]));
}

}  // namespace VeskLib::Test
