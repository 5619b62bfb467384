#include "data/PrimitiveTypeWrapper.h"

#include "tests/unit/support/wireBytes.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Wrapper = VeskUi::PrimitiveTypeWrapper<unsigned int>;

TEST(PrimitiveTypeWrapperTest, isZeroByDefault) {
    EXPECT_EQ(Wrapper().value, 0u);
}

TEST(PrimitiveTypeWrapperTest, writesMostSignificantByteFirst) {
    EXPECT_EQ(serialize(Wrapper(0x01020304)), (Bytes{0x01, 0x02, 0x03, 0x04}));
}

TEST(PrimitiveTypeWrapperTest, writesBoundaryValues) {
    EXPECT_EQ(serialize(Wrapper(0)), (Bytes{0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(serialize(Wrapper(3)), (Bytes{0x00, 0x00, 0x00, 0x03}));
    EXPECT_EQ(serialize(Wrapper(0xFF)), (Bytes{0x00, 0x00, 0x00, 0xFF}));
    EXPECT_EQ(serialize(Wrapper(0x100)), (Bytes{0x00, 0x00, 0x01, 0x00}));
    EXPECT_EQ(serialize(Wrapper(0x7FFFFFFF)), (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(serialize(Wrapper(0x80000000)), (Bytes{0x80, 0x00, 0x00, 0x00}));
    EXPECT_EQ(serialize(Wrapper(0xFFFFFFFF)), (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(PrimitiveTypeWrapperTest, isAlwaysFourBytesLong) {
    EXPECT_EQ(Wrapper(0).getSerializedSize(), 4u);
    EXPECT_EQ(Wrapper(0xFFFFFFFF).getSerializedSize(), 4u);
}

TEST(PrimitiveTypeWrapperTest, leavesRestOfLargerBufferUnchanged) {
    ExactBuffer buffer(6);
    EXPECT_EQ(Wrapper(0x01020304).getSerialized(buffer.data(), buffer.length()), 4u);
    EXPECT_EQ(buffer.bytes(), (Bytes{0x01, 0x02, 0x03, 0x04, 0xEE, 0xEE}));
}

TEST(PrimitiveTypeWrapperTest, rejectsEveryShortBuffer) {
    const ExceptionArguments expected = {
        {1, 80, 19200, 1, 1537, 20019}, {"Too short size"}, {0, 0, 0, 0, 0, 0, 0}};
    for (std::size_t size = 0; size < 4; ++size) {
        ExactBuffer buffer(size);
        EXPECT_EQ(thrownBy([&] { Wrapper(7).getSerialized(buffer.data(), buffer.length()); }, 1),
                  expected)
            << size;
        EXPECT_EQ(buffer.bytes(), Bytes(size, 0xEE)) << size;
    }
}

TEST(PrimitiveTypeWrapperTest, readsMostSignificantByteFirst) {
    Wrapper wrapper(7);
    EXPECT_TRUE(deserialize(wrapper, {0x81, 0x02, 0x03, 0x04}));
    EXPECT_EQ(wrapper.value, 0x81020304u);
    EXPECT_TRUE(deserialize(wrapper, {0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(wrapper.value, 0u);
    EXPECT_TRUE(deserialize(wrapper, {0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(wrapper.value, 0xFFFFFFFFu);
}

TEST(PrimitiveTypeWrapperTest, rejectsMoreThanFourBytes) {
    Wrapper wrapper(7);
    EXPECT_FALSE(deserialize(wrapper, {1, 2, 3, 4, 5}));
    EXPECT_FALSE(deserialize(wrapper, Bytes(300, 1)));
    EXPECT_EQ(wrapper.value, 7u);
}

// Intended: only sizes above four are rejected. Four bytes are always read, so the caller's buffer
// must have four.
TEST(PrimitiveTypeWrapperTest, readsFourBytesEvenWhenSizeIsSmaller) {
    for (unsigned int size = 0; size <= 4; ++size) {
        ExactBuffer buffer(Bytes{0x01, 0x02, 0x03, 0x04});
        Wrapper wrapper(7);
        EXPECT_TRUE(wrapper.setSerialized(buffer.data(), size)) << size;
        EXPECT_EQ(wrapper.value, 0x01020304u) << size;
    }
}

}  // namespace VeskLib::Test
