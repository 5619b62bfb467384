#include "platform/host/storage/ConfigurationFileReader.h"

#include "tests/backend/support/RootTest.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace VeskLib::Test {

using namespace Host;

namespace {

Bytes exampleBytes(std::size_t payloadSize) {
    ConfigurationFile file;
    file.saveTime = 1236384000;
    file.partition = 3;
    file.version = "1.23 B";
    file.partitionName = "Test";
    file.payload.assign(payloadSize, 7);
    return encode(file);
}

bool isReadFrom(const ConfigurationFileReader& reader) {
    ConfigurationFile file;
    file.payload = {1};
    if (!reader.finish(file)) {
        EXPECT_EQ(file.payload, Bytes{1});
        return false;
    }
    EXPECT_EQ(file.saveTime, 1236384000U);
    EXPECT_EQ(file.partition, 3U);
    EXPECT_EQ(file.version, "1.23 B");
    EXPECT_EQ(file.partitionName, "Test");
    EXPECT_TRUE(file.payload.empty());
    return true;
}

bool isReadInPieces(const Bytes& bytes, std::size_t size) {
    ConfigurationFileReader reader;
    for (std::size_t i = 0; i < bytes.size(); i += size) {
        reader.take(bytes.data() + i, std::min(size, bytes.size() - i));
    }
    return isReadFrom(reader);
}

}  // namespace

TEST(ConfigurationFileReader, readsPiecesOfAnySize) {
    for (const std::size_t payloadSize : {0U, 1U, 7U, 2000U}) {
        const Bytes bytes = exampleBytes(payloadSize);
        for (std::size_t size = 1; size <= std::min<std::size_t>(bytes.size(), 60); ++size) {
            EXPECT_TRUE(isReadInPieces(bytes, size)) << payloadSize << ", " << size;
        }
    }
}

TEST(ConfigurationFileReader, readsFileSplitAtAnyByte) {
    const Bytes bytes = exampleBytes(7);
    for (std::size_t split = 0; split <= bytes.size(); ++split) {
        ConfigurationFileReader reader;
        reader.take(bytes.data(), split);
        reader.take(bytes.data() + split, bytes.size() - split);
        EXPECT_TRUE(isReadFrom(reader)) << split;
    }
}

TEST(ConfigurationFileReader, detectsDamageInPiecesOfAnySize) {
    const Bytes whole = exampleBytes(7);
    for (std::size_t position = 0; position < whole.size(); ++position) {
        Bytes damaged = whole;
        damaged[position] ^= 0x10;
        for (const std::size_t size : {1U, 4U, 5U, 64U}) {
            EXPECT_FALSE(isReadInPieces(damaged, size)) << position << ", " << size;
            EXPECT_FALSE(isReadInPieces(cut(whole, position), size)) << position << ", " << size;
        }
    }
}

TEST(ConfigurationFileReader, rejectsEmptyInput) {
    EXPECT_FALSE(isReadFrom(ConfigurationFileReader()));
}

}  // namespace VeskLib::Test
