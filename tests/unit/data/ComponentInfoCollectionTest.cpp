#include "data/ComponentInfoCollection.h"

#include "data/PrimitiveTypeArray.h"
#include "tests/unit/support/CountedArray.h"
#include "tests/unit/support/ScriptedTest.h"
#include "tests/unit/support/wireBytes.h"

#include <algorithm>

namespace VeskLib::Test {

using ByteArray = VeskUi::PrimitiveTypeArray<unsigned char>;
using Collection = VeskUi::ComponentInfoCollection<ByteArray>;

namespace {

// Three elements: two bytes, none, one byte.
const Bytes THREE_ELEMENTS = {0x00, 0x03, 0x00, 0x04, 0x00, 0x02, 0x41, 0x42, 0x00,
                              0x02, 0x00, 0x00, 0x00, 0x03, 0x00, 0x01, 0x43};

const ExceptionArguments WRITE_FAULT = {
    {1, 80, 2560, 1, 1537, 20010},
    {"ComponentInfoCollection::getSerialized", "Different Buffer Size"},
    {0, 0, 0, 0, 0, 0}};
const ExceptionArguments READ_FAULT = {
    {1, 80, 2560, 1, 1537, 20010},
    {"ComponentInfoCollection::setSerialized", "Different Buffer Size"},
    {0, 0, 0, 0, 0, 0}};

}  // namespace

class ComponentInfoCollectionTest : public ScriptedTest {
protected:
    // Returns the bytes of each element.
    std::vector<Bytes> elementBytes() const {
        std::vector<Bytes> contents;
        for (const auto& element : collection.elements) {
            contents.push_back(element->records);
        }
        return contents;
    }

    void add(const Bytes& bytes) {
        auto element = std::make_unique<ByteArray>();
        element->records = bytes;
        collection.elements.push_back(std::move(element));
    }

    Collection collection;
};

TEST_F(ComponentInfoCollectionTest, writesTwoZeroBytesWhenEmpty) {
    EXPECT_EQ(collection.getSerializedSize(), 2u);
    EXPECT_EQ(serialize(collection), (Bytes{0x00, 0x00}));
}

TEST_F(ComponentInfoCollectionTest, writesLengthBeforeEachElement) {
    add({0x41, 0x42});
    add({});
    add({0x43});
    EXPECT_EQ(collection.getSerializedSize(), THREE_ELEMENTS.size());
    EXPECT_EQ(serialize(collection), THREE_ELEMENTS);
}

TEST_F(ComponentInfoCollectionTest, writesTwoByteCountsAndLengths) {
    for (int i = 0; i < 0x0102; ++i) {
        add({});
    }
    add(Bytes(0x0203 - 2, 0x55));
    const Bytes wire = serialize(collection);
    EXPECT_EQ(cut(wire, 6), (Bytes{0x01, 0x03, 0x00, 0x02, 0x00, 0x00}));
    const std::size_t last = 2 + 0x0102 * 4;
    EXPECT_EQ(wire.size(), last + 2 + 0x0203);
    EXPECT_EQ(Bytes(wire.begin() + last, wire.begin() + last + 5),
              (Bytes{0x02, 0x03, 0x02, 0x01, 0x55}));
}

// Intended: the length is truncated to 16 bits, the bytes are not.
TEST_F(ComponentInfoCollectionTest, truncatesLengthAbove65535ButWritesWholeElement) {
    add(Bytes(0x10001 - 2, 0x55));
    add({0x41});
    const Bytes wire = serialize(collection);
    EXPECT_EQ(wire.size(), 2u + 2 + 0x10001 + 2 + 3);
    EXPECT_EQ(cut(wire, 7), (Bytes{0x00, 0x02, 0x00, 0x01, 0xFF, 0xFF, 0x55}));
    EXPECT_EQ(Bytes(wire.end() - 6, wire.end()), (Bytes{0x55, 0x00, 0x03, 0x00, 0x01, 0x41}));
}

TEST_F(ComponentInfoCollectionTest, truncatesCountAbove65535ButWritesEveryElement) {
    for (int i = 0; i < 0x10001; ++i) {
        add({});
    }
    const Bytes wire = serialize(collection);
    EXPECT_EQ(wire.size(), 2u + 0x10001 * 4);
    EXPECT_EQ(cut(wire, 6), (Bytes{0x00, 0x01, 0x00, 0x02, 0x00, 0x00}));
}

TEST_F(ComponentInfoCollectionTest, rejectsEveryShortBuffer) {
    add({0x41, 0x42});
    add({0x43});
    const std::size_t wanted = collection.getSerializedSize();
    EXPECT_EQ(wanted, 13u);
    for (std::size_t size = 0; size < wanted; ++size) {
        ExactBuffer buffer(size);
        EXPECT_EQ(thrownBy([&] { collection.getSerialized(buffer.data(), buffer.length()); }, 2),
                  WRITE_FAULT)
            << size;
        EXPECT_EQ(buffer.bytes(), Bytes(size, 0xEE)) << size;
    }
}

TEST_F(ComponentInfoCollectionTest, rejectsOneByteBufferWhenEmpty) {
    ExactBuffer buffer(1);
    EXPECT_EQ(thrownBy([&] { collection.getSerialized(buffer.data(), buffer.length()); }, 2),
              WRITE_FAULT);
}

TEST_F(ComponentInfoCollectionTest, leavesRestOfLargerBufferUnchanged) {
    add({0x41});
    ExactBuffer buffer(9);
    EXPECT_EQ(collection.getSerialized(buffer.data(), buffer.length()), 7u);
    EXPECT_EQ(buffer.bytes(), (Bytes{0x00, 0x01, 0x00, 0x03, 0x00, 0x01, 0x41, 0xEE, 0xEE}));
}

// getSerializedSize() is called virtually; the result is the number of bytes written.
TEST_F(ComponentInfoCollectionTest, checksBufferAgainstVirtualSizeAndReturnsBytesWritten) {
    class LargerCollection : public Collection {
    public:
        unsigned int getSerializedSize() const override { return 40; }
    };
    LargerCollection larger;
    larger.elements.push_back(std::make_unique<ByteArray>());
    ExactBuffer buffer(40);
    EXPECT_THROW(larger.getSerialized(buffer.data(), 39), PException);
    EXPECT_EQ(larger.getSerialized(buffer.data(), 40), 6u);
}

TEST_F(ComponentInfoCollectionTest, readsElements) {
    EXPECT_TRUE(deserialize(collection, THREE_ELEMENTS));
    EXPECT_THAT(elementBytes(), testing::ElementsAre(Bytes{0x41, 0x42}, Bytes{}, Bytes{0x43}));
}

TEST_F(ComponentInfoCollectionTest, readsSmallestNonEmptyCollection) {
    EXPECT_TRUE(deserialize(collection, {0x00, 0x01, 0x00, 0x03, 0x00, 0x01, 0x41}));
    EXPECT_THAT(elementBytes(), testing::ElementsAre(Bytes{0x41}));
}

TEST_F(ComponentInfoCollectionTest, rejectsTrailingByteAndKeepsElements) {
    EXPECT_EQ(thrownBy(
                  [&] {
                      deserialize(collection, {0x00, 0x01, 0x00, 0x03, 0x00, 0x01, 0x41, 0x00});
                  },
                  2),
              READ_FAULT);
    EXPECT_THAT(elementBytes(), testing::ElementsAre(Bytes{0x41}));
}

// Two bytes are needed even for a count of 0.
TEST_F(ComponentInfoCollectionTest, rejectsTruncatedCount) {
    for (const std::size_t size : {0, 1}) {
        const Bytes wire(size, 0x00);
        EXPECT_EQ(thrownBy([&] { deserialize(collection, wire); }, 2), READ_FAULT) << size;
    }
    EXPECT_THAT(elementBytes(), testing::IsEmpty());
}

// The truncation may hit the count, a length or an element; the elements before it are kept.
TEST_F(ComponentInfoCollectionTest, rejectsEveryTruncationAndKeepsPrecedingElements) {
    const std::vector<std::size_t> ends = {8, 12, 17};
    for (std::size_t size = 0; size < THREE_ELEMENTS.size(); ++size) {
        Collection truncated;
        EXPECT_EQ(thrownBy([&] { deserialize(truncated, cut(THREE_ELEMENTS, size)); }, 2),
                  READ_FAULT)
            << size;
        const auto whole =
            std::count_if(ends.begin(), ends.end(), [&](std::size_t end) { return end <= size; });
        EXPECT_EQ(truncated.elements.size(), static_cast<std::size_t>(whole)) << size;
    }
}

TEST_F(ComponentInfoCollectionTest, addsNoElementForLengthPastEnd) {
    EXPECT_EQ(thrownBy(
                  [&] {
                      deserialize(collection, {0x00, 0x01, 0xFF, 0xFF, 0x00, 0x00});
                  },
                  2),
              READ_FAULT);
    EXPECT_THAT(elementBytes(), testing::IsEmpty());
}

TEST_F(ComponentInfoCollectionTest, acceptsZeroCountWhateverFollows) {
    EXPECT_TRUE(deserialize(collection, {0x00, 0x00}));
    EXPECT_TRUE(deserialize(collection, {0x00, 0x00, 0x41}));
    EXPECT_TRUE(deserialize(collection, Bytes(50, 0x00)));
    EXPECT_THAT(elementBytes(), testing::IsEmpty());
}

TEST_F(ComponentInfoCollectionTest, leavesElementEmptyWhenItRejectsItsBytes) {
    EXPECT_TRUE(deserialize(collection, {0x00, 0x04,                    // four elements
                                         0x00, 0x00,                    // empty
                                         0x00, 0x01, 0x00,              // half a count
                                         0x00, 0x03, 0x00, 0x02, 0x41,  // a count of two, one byte
                                         0x00, 0x03, 0x00, 0x01, 0x42}));
    EXPECT_THAT(elementBytes(), testing::ElementsAre(Bytes{}, Bytes{}, Bytes{}, Bytes{0x42}));
}

TEST_F(ComponentInfoCollectionTest, allowsElementToIgnoreTrailingBytes) {
    EXPECT_TRUE(deserialize(collection, {0x00, 0x01, 0x00, 0x05, 0x00, 0x01, 0x41, 0x42, 0x43}));
    EXPECT_THAT(elementBytes(), testing::ElementsAre(Bytes{0x41}));
}

TEST_F(ComponentInfoCollectionTest, readsTwoByteCountsAndLengths) {
    for (int i = 0; i < 0x0102; ++i) {
        add({});
    }
    add(Bytes(0x0203, 0x55));
    const Bytes wire = serialize(collection);
    Collection copy;
    EXPECT_TRUE(deserialize(copy, wire));
    EXPECT_EQ(copy.elements.size(), 0x0103u);
    EXPECT_EQ(serialize(copy), wire);
}

TEST_F(ComponentInfoCollectionTest, appendsToExistingContents) {
    add({0x40});
    EXPECT_TRUE(deserialize(collection, {0x00, 0x01, 0x00, 0x03, 0x00, 0x01, 0x41}));
    EXPECT_TRUE(deserialize(collection, {0x00, 0x01, 0x00, 0x03, 0x00, 0x01, 0x42}));
    EXPECT_THROW(deserialize(collection, {0x00, 0x02, 0x00, 0x03, 0x00, 0x01, 0x43}), PException);
    EXPECT_THAT(elementBytes(),
                testing::ElementsAre(Bytes{0x40}, Bytes{0x41}, Bytes{0x42}, Bytes{0x43}));
}

TEST_F(ComponentInfoCollectionTest, deletesEveryElementOnceInOrder) {
    {
        Collection owner;
        owner.elements.push_back(std::make_unique<CountedArray>("first"));
        owner.elements.push_back(nullptr);
        owner.elements.push_back(std::make_unique<CountedArray>("second"));
    }
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete first", "delete second"));
}

}  // namespace VeskLib::Test
