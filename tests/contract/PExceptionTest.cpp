#include <VeskLib/PException.h>

#include <gtest/gtest.h>

namespace VeskLib::Test {

namespace {

PException makeException(const char* text) {
    return {1, 2, 29697, 4, 65535, 20019, reinterpret_cast<long>(text), -2, 3, 4, 5, 6, 7, 8};
}

}  // namespace

TEST(PExceptionTest, returnsConstructorArguments) {
    const PException exception = makeException("text");
    EXPECT_EQ(exception.getSystem(), 1);
    EXPECT_EQ(exception.getSubsystem(), 2);
    EXPECT_EQ(exception.getModule(), 29697);
    EXPECT_EQ(exception.getSeverity(), 4);
    EXPECT_EQ(exception.getExceptionDetail(), 65535);
    EXPECT_EQ(exception.getMessageNumber(), 20019);
    EXPECT_EQ(exception.getArgument(1), -2);
    for (unsigned int index = 2; index < 8; ++index) {
        EXPECT_EQ(exception.getArgument(index), static_cast<long>(index) + 1);
    }
}

TEST(PExceptionTest, argumentsBeyondTheEighthAreZero) {
    const PException exception = makeException("text");
    EXPECT_EQ(exception.getArgument(8), 0);
    EXPECT_EQ(exception.getArgument(~0U), 0);
}

TEST(PExceptionTest, keepsTextPointerInArgument) {
    static const char TEXT[] = "constant text";
    try {
        throw makeException(TEXT);
    } catch (const PException& exception) {
        EXPECT_EQ(reinterpret_cast<const char*>(exception.getArgument(0)), TEXT);
    }
}

TEST(PExceptionTest, copyHasSameValues) {
    const PException exception = makeException("text");
    PException copy = makeException("other");
    copy = exception;
    const PException another(copy);
    EXPECT_EQ(another.getExceptionDetail(), 65535);
    EXPECT_EQ(another.getArgument(0), exception.getArgument(0));
    EXPECT_EQ(another.getArgument(7), 8);
}

TEST(PExceptionTest, derivedExceptionIsCaughtAsPException) {
    class Derived : public PException {
    public:
        Derived() : PException(makeException("derived")) {}
    };
    EXPECT_THROW(throw Derived(), PException);
}

}  // namespace VeskLib::Test
