#include "platform/host/storage/ConfigurationFile.h"

#include "tests/backend/support/hexadecimalText.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

namespace {

// The worked example of docs/configuration-file.md.
ConfigurationFile makeExample() {
    ConfigurationFile file;
    file.saveTime = 1236384000;  // 2009-03-07 00:00:00 UTC
    file.partition = 3;
    file.version = "1.23 B";
    file.partitionName = "Test";
    file.payload = {'B', 'o', 'o', 't', '=', '1', '\n'};
    return file;
}

const char* const EXAMPLE_BYTES =
    "45 46 49 43 4F 4E 46 1A 00 00 00 01 49 B1 B9 00 00 00 00 03 00 06 00 04 00 00 00 07 "
    "31 2E 32 33 20 42 54 65 73 74 42 6F 6F 74 3D 31 0A 90 7E 25 9B";

const std::size_t SMALLEST_FILE = 32;

// Returns the bytes with their last four replaced by the matching checksum.
Bytes withChecksum(Bytes bytes) {
    const std::uint32_t value = crc32(bytes.data(), bytes.size() - 4);
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[bytes.size() - 4 + i] = static_cast<unsigned char>(value >> 8 * (3 - i));
    }
    return bytes;
}

bool isConfigurationFile(const Bytes& bytes) {
    ConfigurationFile file;
    file.partitionName = "before";
    const bool read = decode(bytes, file);
    EXPECT_TRUE(read || file.partitionName == "before");
    return read;
}

}  // namespace

TEST(ConfigurationFile, encodesExample) {
    EXPECT_EQ(toHexadecimal(encode(makeExample())), EXAMPLE_BYTES);
}

TEST(ConfigurationFile, decodesExample) {
    ConfigurationFile file;
    ASSERT_TRUE(decode(fromHexadecimal(EXAMPLE_BYTES), file));
    EXPECT_EQ(file.revision, 1U);
    EXPECT_EQ(file.saveTime, 1236384000U);
    EXPECT_EQ(file.partition, 3U);
    EXPECT_EQ(file.version, "1.23 B");
    EXPECT_EQ(file.partitionName, "Test");
    EXPECT_EQ(file.payload, makeExample().payload);
}

TEST(ConfigurationFile, acceptsSmallestFile) {
    const Bytes bytes = encode(ConfigurationFile());
    EXPECT_EQ(bytes.size(), SMALLEST_FILE);
    EXPECT_TRUE(isConfigurationFile(bytes));
}

TEST(ConfigurationFile, detectsDamageInAnyBit) {
    const Bytes whole = fromHexadecimal(EXAMPLE_BYTES);
    for (std::size_t position = 0; position < whole.size(); ++position) {
        for (int bit = 0; bit < 8; ++bit) {
            Bytes damaged = whole;
            damaged[position] = static_cast<unsigned char>(damaged[position] ^ 1 << bit);
            EXPECT_FALSE(isConfigurationFile(damaged)) << position << "." << bit;
        }
    }
}

TEST(ConfigurationFile, detectsEveryTruncation) {
    const Bytes whole = fromHexadecimal(EXAMPLE_BYTES);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(isConfigurationFile(cut(whole, size))) << size;
    }
}

TEST(ConfigurationFile, detectsTrailingBytes) {
    Bytes bytes = fromHexadecimal(EXAMPLE_BYTES);
    bytes.push_back(0);
    EXPECT_FALSE(isConfigurationFile(bytes));
    // Even with a matching checksum.
    EXPECT_FALSE(isConfigurationFile(withChecksum(bytes)));
}

// Malformed fields are rejected even when the checksum matches.
TEST(ConfigurationFile, checksEveryFieldDespiteMatchingChecksum) {
    const Bytes whole = fromHexadecimal(EXAMPLE_BYTES);
    ASSERT_TRUE(isConfigurationFile(withChecksum(whole)));
    const struct {
        const char* field;
        std::size_t position;
        unsigned char value;
    } faults[] = {
        {"magic, first byte", 0, 'e'},
        {"magic, last byte", 7, 0x1B},
        {"revision 0", 11, 0},
        {"revision 2", 11, 2},
        {"revision 257", 10, 1},
        {"version too long", 20, 0x01},
        {"version overlaps the name", 21, 7},
        {"name runs past the end", 23, 12},
        {"payload runs past the end", 27, 8},
        {"payload leaves bytes", 27, 6},
        {"payload of 4 GiB", 24, 0xFF},
    };
    for (const auto& fault : faults) {
        Bytes bytes = whole;
        bytes[fault.position] = fault.value;
        EXPECT_FALSE(isConfigurationFile(withChecksum(bytes))) << fault.field;
    }
}

TEST(ConfigurationFile, encodesTextsUpToTheirLimit) {
    ConfigurationFile file;
    file.version = std::string(255, 'v');
    file.partitionName = std::string(1023, 'n');
    ConfigurationFile read;
    ASSERT_TRUE(decode(encode(file), read));
    EXPECT_EQ(read.version, file.version);
    EXPECT_EQ(read.partitionName, file.partitionName);

    file.version += 'v';
    EXPECT_TRUE(encode(file).empty());
    file.version.clear();
    file.partitionName += 'n';
    EXPECT_TRUE(encode(file).empty());
}

TEST(ConfigurationFile, rejectsTextsAboveTheirLimit) {
    Bytes bytes = encode(ConfigurationFile());
    bytes.insert(bytes.begin() + 28, 256, 'v');
    bytes[20] = 1;
    EXPECT_FALSE(isConfigurationFile(withChecksum(bytes)));

    bytes = encode(ConfigurationFile());
    bytes.insert(bytes.begin() + 28, 1024, 'n');
    bytes[22] = 4;
    EXPECT_FALSE(isConfigurationFile(withChecksum(bytes)));
}

TEST(ConfigurationFile, acceptsFileUpToLargestSize) {
    ConfigurationFile file;
    file.payload.assign(LARGEST_CONFIGURATION_FILE - SMALLEST_FILE, 0x5A);
    const Bytes bytes = encode(file);
    EXPECT_EQ(bytes.size(), 393216U);
    EXPECT_TRUE(isConfigurationFile(bytes));

    file.payload.push_back(0x5A);
    EXPECT_TRUE(encode(file).empty());
    Bytes larger = bytes;
    larger.push_back(0);
    larger[27] = static_cast<unsigned char>(larger[27] + 1);
    EXPECT_FALSE(isConfigurationFile(withChecksum(larger)));
}

TEST(ConfigurationFile, checksumIsStandardCRC32) {
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(crc32(digits.data(), digits.size()), 0xCBF43926U);
    EXPECT_EQ(crc32(digits.data(), 0), 0U);
}

TEST(ConfigurationFile, computesChecksumInPieces) {
    std::vector<unsigned char> bytes(23);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(37 * i + 200);
    }
    std::uint32_t expected = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        expected = crc32(&bytes[i], 1, expected);
        for (std::size_t first = 0; first <= i + 1; ++first) {
            const std::uint32_t start = crc32(bytes.data(), first);
            EXPECT_EQ(crc32(bytes.data() + first, i + 1 - first, start), expected);
        }
    }
}

}  // namespace VeskLib::Test
