#include "data/WireCursor.h"

#include "tests/unit/support/wireBytes.h"

namespace VeskLib::Test {

using VeskUi::WireReader;
using VeskUi::WireWriter;

TEST(WireReaderTest, readsConsecutiveBigEndianNumbers) {
    ExactBuffer buffer(Bytes{0x82, 0x03, 0x84, 0x05, 0x06, 0x07});
    WireReader reader(buffer.data(), buffer.length());
    EXPECT_EQ(reader.readU16(), 0x8203u);
    EXPECT_EQ(reader.readU32(), 0x84050607u);
    EXPECT_EQ(reader.remaining(), 0u);
    EXPECT_FALSE(reader.failed());
}

TEST(WireReaderTest, readsBytesInPlace) {
    ExactBuffer buffer(Bytes{'a', 'b', '\0', 'c', 'd'});
    WireReader reader(buffer.data(), buffer.length());
    EXPECT_EQ(reader.readBytes(4), buffer.data());
    EXPECT_EQ(reader.readBytes(1), buffer.data() + 4);
    EXPECT_NE(reader.readBytes(0), nullptr);
    EXPECT_FALSE(reader.failed());
}

TEST(WireReaderTest, failsForGoodAfterReadPastEnd) {
    for (std::size_t size = 0; size < 4; ++size) {
        ExactBuffer buffer(Bytes(size, 0x11));
        WireReader reader(buffer.data(), buffer.length());
        EXPECT_EQ(reader.readU32(), 0u) << size;
        EXPECT_TRUE(reader.failed());
        EXPECT_EQ(reader.remaining(), size);
        // Bytes remain, but their meaning is no longer known.
        EXPECT_EQ(reader.readU16(), 0u);
        EXPECT_EQ(reader.readBytes(0), nullptr);
        EXPECT_TRUE(reader.failed());
    }
}

TEST(WireReaderTest, rejectsRunPastEnd) {
    ExactBuffer buffer(Bytes(3, 0x11));
    WireReader reader(buffer.data(), buffer.length());
    EXPECT_EQ(reader.readBytes(4), nullptr);
    EXPECT_TRUE(reader.failed());
}

TEST(WireReaderTest, rejectsLongestRunWithoutWrapAround) {
    ExactBuffer buffer(Bytes(3, 0x11));
    WireReader reader(buffer.data(), buffer.length());
    EXPECT_EQ(reader.readU16(), 0x1111u);
    EXPECT_EQ(reader.readBytes(static_cast<std::size_t>(-1)), nullptr);
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(reader.remaining(), 1u);
}

TEST(WireWriterTest, writesConsecutiveBigEndianNumbers) {
    ExactBuffer buffer(8);
    WireWriter writer(buffer.data(), buffer.length());
    writer.writeU16(0x8203);
    writer.writeU32(0x84050607);
    writer.writeBytes("xy", 2);
    EXPECT_EQ(buffer.bytes(), (Bytes{0x82, 0x03, 0x84, 0x05, 0x06, 0x07, 'x', 'y'}));
    EXPECT_FALSE(writer.failed());
}

TEST(WireWriterTest, failsForGoodAfterWritePastEnd) {
    for (std::size_t size = 0; size < 4; ++size) {
        ExactBuffer buffer(size);
        WireWriter writer(buffer.data(), buffer.length());
        writer.writeU32(0x01020304);
        writer.writeBytes("x", 1);
        EXPECT_TRUE(writer.failed()) << size;
        EXPECT_EQ(buffer.bytes(), Bytes(size, 0xEE)) << size;
    }
}

TEST(WireWriterTest, rejectsBytesBeyondRemainingSpace) {
    ExactBuffer buffer(4);
    WireWriter writer(buffer.data(), buffer.length());
    writer.writeU16(0x0102);
    writer.writeBytes("abc", 3);
    EXPECT_TRUE(writer.failed());
    EXPECT_EQ(buffer.bytes(), (Bytes{0x01, 0x02, 0xEE, 0xEE}));
}

TEST(WireWriterTest, acceptsNullForZeroBytes) {
    WireWriter writer(nullptr, 0);
    writer.writeBytes(nullptr, 0);
    EXPECT_FALSE(writer.failed());
}

}  // namespace VeskLib::Test
