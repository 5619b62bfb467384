#include "data/PrimitiveTypeArray.h"

#include "data/HardInstallInfoPacket.h"
#include "tests/unit/support/wireBytes.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using VeskUi::HardInstallInfoPacket;
using ByteArray = VeskUi::PrimitiveTypeArray<unsigned char>;
using SBArray = VeskUi::PrimitiveTypeArray<HardInstallInfoPacket::SBData>;
using IOBArray = VeskUi::PrimitiveTypeArray<HardInstallInfoPacket::IOBData>;
using GSPBArray = VeskUi::PrimitiveTypeArray<HardInstallInfoPacket::GSPBData>;

namespace {

const unsigned int MOST_COUNTED = 65535;

// Set `record` to a value made of `seed`, and append its wire form to `wire`.
void give(unsigned char& record, Bytes& wire, unsigned int seed) {
    record = static_cast<unsigned char>(seed);
    wire.push_back(record);
}

std::uint32_t makeWord(Bytes& wire, unsigned int seed) {
    const auto last = static_cast<unsigned char>(seed);
    wire.insert(wire.end(), {0xF1, 0x02, 0x03, last});
    return 0xF1020300u + last;
}

void give(HardInstallInfoPacket::SBData& record, Bytes& wire, unsigned int seed) {
    record.word = makeWord(wire, seed);
}

template <typename Record>
void give(Record& record, Bytes& wire, unsigned int seed) {
    record.word = makeWord(wire, seed);
    record.halfWord = 0x85F6;
    wire.insert(wire.end(), {0x85, 0xF6});
}

// Tests of what all four array types have in common.
template <typename Array>
class PrimitiveTypeArrayTest : public testing::Test {
protected:
    using Record = typename decltype(Array::records)::value_type;

    // Sets `array` to `count` records, and `wire` to its wire form.
    void fill(unsigned int count) {
        wire = {static_cast<unsigned char>(count >> 8), static_cast<unsigned char>(count)};
        array.records.resize(count);
        for (unsigned int i = 0; i < count; ++i) {
            give(array.records[i], wire, i + 0x41);
        }
    }

    Array array;
    Bytes wire;
};

using Arrays = testing::Types<ByteArray, SBArray, IOBArray, GSPBArray>;
TYPED_TEST_SUITE(PrimitiveTypeArrayTest, Arrays);

}  // namespace

TYPED_TEST(PrimitiveTypeArrayTest, writesTwoZeroBytesWhenEmpty) {
    EXPECT_EQ(this->array.getSerializedSize(), 2u);
    EXPECT_EQ(serialize(this->array), (Bytes{0x00, 0x00}));
}

TYPED_TEST(PrimitiveTypeArrayTest, writesCountAndRecordsBackToBack) {
    this->fill(3);
    EXPECT_EQ(this->array.getSerializedSize(), this->wire.size());
    EXPECT_EQ(serialize(this->array), this->wire);
}

TYPED_TEST(PrimitiveTypeArrayTest, writesTwoByteCount) {
    this->fill(0x0102);
    EXPECT_EQ(serialize(this->array), this->wire);
}

TYPED_TEST(PrimitiveTypeArrayTest, leavesRestOfLargerBufferUnchanged) {
    this->fill(1);
    ExactBuffer buffer(this->wire.size() + 2);
    EXPECT_EQ(this->array.getSerialized(buffer.data(), buffer.length()), this->wire.size());
    this->wire.insert(this->wire.end(), {0xEE, 0xEE});
    EXPECT_EQ(buffer.bytes(), this->wire);
}

TYPED_TEST(PrimitiveTypeArrayTest, rejectsEveryShortBuffer) {
    const ExceptionArguments expected = {
        {1, 80, 23296, 1, 1537, 20019}, {"Insufficient buffer size"}, {0, 0, 0, 0, 0, 0, 0}};
    this->fill(2);
    for (std::size_t size = 0; size < this->wire.size(); ++size) {
        ExactBuffer buffer(size);
        EXPECT_EQ(thrownBy([&] { this->array.getSerialized(buffer.data(), buffer.length()); }, 1),
                  expected)
            << size;
        EXPECT_EQ(buffer.bytes(), Bytes(size, 0xEE)) << size;
    }
}

TYPED_TEST(PrimitiveTypeArrayTest, readsWhatItWrites) {
    this->fill(0x0102);
    TypeParam copy;
    EXPECT_TRUE(deserialize(copy, this->wire));
    EXPECT_EQ(copy.records.size(), 0x0102u);
    EXPECT_EQ(serialize(copy), this->wire);
}

TYPED_TEST(PrimitiveTypeArrayTest, rejectsEveryTruncationAndAppendsNothing) {
    this->fill(2);
    for (std::size_t size = 0; size < this->wire.size(); ++size) {
        TypeParam copy;
        copy.records.resize(1);
        EXPECT_FALSE(deserialize(copy, cut(this->wire, size))) << size;
        EXPECT_EQ(copy.records.size(), 1u) << size;
    }
}

TYPED_TEST(PrimitiveTypeArrayTest, rejectsLargestCountWhenOneByteIsMissing) {
    this->fill(MOST_COUNTED);
    TypeParam copy;
    EXPECT_FALSE(deserialize(copy, cut(this->wire, this->wire.size() - 1)));
    EXPECT_TRUE(copy.records.empty());
    EXPECT_TRUE(deserialize(copy, this->wire));
    EXPECT_EQ(copy.records.size(), MOST_COUNTED);
}

TYPED_TEST(PrimitiveTypeArrayTest, ignoresBytesAfterCountedRecords) {
    this->fill(1);
    TypeParam copy;
    this->wire.insert(this->wire.end(), 20, 0x99);
    EXPECT_TRUE(deserialize(copy, this->wire));
    EXPECT_EQ(copy.records.size(), 1u);
}

TYPED_TEST(PrimitiveTypeArrayTest, acceptsZeroCountWhateverFollows) {
    TypeParam copy;
    copy.records.resize(2);
    EXPECT_TRUE(deserialize(copy, {0x00, 0x00}));
    EXPECT_TRUE(deserialize(copy, {0x00, 0x00, 0x41}));
    EXPECT_EQ(copy.records.size(), 2u);
}

// Intended: a second call appends to the records of the first.
TYPED_TEST(PrimitiveTypeArrayTest, appendsToExistingContents) {
    this->fill(3);
    const Bytes three = this->wire;
    this->fill(1);
    TypeParam copy;
    EXPECT_TRUE(deserialize(copy, three));
    EXPECT_TRUE(deserialize(copy, this->wire));
    Bytes all = three;
    all[1] = 4;
    all.insert(all.end(), this->wire.begin() + 2, this->wire.end());
    EXPECT_EQ(serialize(copy), all);
}

// Intended: the count is truncated to 16 bits, but all records are written.
TYPED_TEST(PrimitiveTypeArrayTest, writesAllRecordsWhenCountIsTruncated) {
    for (const unsigned int count : {MOST_COUNTED, MOST_COUNTED + 1, MOST_COUNTED + 4}) {
        this->fill(count);
        EXPECT_EQ(this->array.getSerializedSize(), this->wire.size()) << count;
        EXPECT_TRUE(serialize(this->array) == this->wire) << count;
    }
}

TYPED_TEST(PrimitiveTypeArrayTest, checksBufferAgainstAllRecordsWhenCountIsTruncated) {
    this->fill(MOST_COUNTED + 1);
    ExactBuffer buffer(this->wire.size() - 1);
    EXPECT_THROW(this->array.getSerialized(buffer.data(), buffer.length()), PException);
}

// getSerializedSize() is called virtually, so a derived class may require a larger buffer.
TYPED_TEST(PrimitiveTypeArrayTest, checksBufferAgainstVirtualSize) {
    class LargerArray : public TypeParam {
    public:
        unsigned int getSerializedSize() const override { return 40; }
    };
    const LargerArray larger;
    ExactBuffer buffer(40);
    EXPECT_THROW(larger.getSerialized(buffer.data(), 39), PException);
    EXPECT_EQ(larger.getSerialized(buffer.data(), 40), 40u);
}

TEST(PrimitiveTypeArrayOfBytesTest, hasFixedWireForm) {
    ByteArray array;
    array.records = {0x41, 0x42};
    EXPECT_EQ(array.getSerializedSize(), 4u);
    EXPECT_EQ(serialize(array), (Bytes{0x00, 0x02, 0x41, 0x42}));
}

TEST(PrimitiveTypeArrayOfBytesTest, readsExactlyCountedBytes) {
    ByteArray array;
    EXPECT_FALSE(deserialize(array, {0x00, 0x03, 0x41, 0x42}));
    EXPECT_THAT(array.records, testing::IsEmpty());
    EXPECT_TRUE(deserialize(array, {0x00, 0x01, 0x41, 0x42}));
    EXPECT_THAT(array.records, testing::ElementsAre(0x41));
}

TEST(PrimitiveTypeArrayOfBytesTest, appendsWhenReadTwice) {
    ByteArray array;
    EXPECT_TRUE(deserialize(array, {0x00, 0x01, 0x41}));
    EXPECT_TRUE(deserialize(array, {0x00, 0x01, 0x41}));
    EXPECT_THAT(array.records, testing::ElementsAre(0x41, 0x41));
}

TEST(PrimitiveTypeArrayOfSBDataTest, hasFixedWireForm) {
    SBArray array;
    array.records = {{0x01020304}, {0xFFFFFFFF}};
    EXPECT_EQ(serialize(array),
              (Bytes{0x00, 0x02, 0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0xFF}));
    SBArray copy;
    EXPECT_TRUE(deserialize(copy, {0x00, 0x01, 0x81, 0x02, 0x03, 0x04}));
    EXPECT_EQ(copy.records.at(0).word, 0x81020304u);
}

TEST(PrimitiveTypeArrayOfIOBDataTest, hasFixedWireForm) {
    IOBArray array;
    array.records = {{0x01020304, 0x0506}};
    EXPECT_EQ(array.getSerializedSize(), 8u);
    EXPECT_EQ(serialize(array), (Bytes{0x00, 0x01, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06}));
    IOBArray copy;
    EXPECT_TRUE(deserialize(copy, {0x00, 0x01, 0x81, 0x02, 0x03, 0x04, 0x85, 0x06}));
    EXPECT_EQ(copy.records.at(0).word, 0x81020304u);
    EXPECT_EQ(copy.records.at(0).halfWord, 0x8506u);
}

TEST(PrimitiveTypeArrayOfGSPBDataTest, hasFixedWireForm) {
    GSPBArray array;
    array.records = {{0x01020304, 0x0506}};
    EXPECT_EQ(array.getSerializedSize(), 8u);
    EXPECT_EQ(serialize(array), (Bytes{0x00, 0x01, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06}));
    GSPBArray copy;
    EXPECT_TRUE(deserialize(copy, {0x00, 0x01, 0x81, 0x02, 0x03, 0x04, 0x85, 0x06}));
    EXPECT_EQ(copy.records.at(0).word, 0x81020304u);
    EXPECT_EQ(copy.records.at(0).halfWord, 0x8506u);
}

}  // namespace VeskLib::Test
