#include "board/backend/ConfigurationStore.h"

#include "board/backend/StoredConfigurations.h"
#include "platform/host/base/sha256.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/hexadecimalText.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>

namespace VeskLib::Test {

using namespace Board;

namespace {

// Partitions 0 and 2 of three are installed.
BoardDescription makeDescription() {
    BoardDescription description;
    description.partitions.resize(3);
    for (const unsigned int number : {0U, 2U}) {
        description.partitions[number].installed = true;
        description.partitions[number].initialPayload = {'i', static_cast<unsigned char>(number)};
    }
    return description;
}

class ConfigurationStoreTest : public RootTest {
protected:
    ConfigurationStoreTest() { std::filesystem::create_directory(folder); }

    std::string whyNotOpened() const {
        try {
            const ConfigurationStore store(path, makeDescription());
            return "opened";
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
    }

    const std::string folder = at("state");
    const std::string path = folder + "/configurations";
    const BoardDescription description = makeDescription();
};

// The worked example of docs/configuration-file.md: the configuration of partition 0 is "A", that
// of partition 3 is empty.
const char* const STATE_BYTES =
    "45 46 49 53 54 4F 52 1A 00 00 00 01 00 00 00 02 "
    "00 00 00 00 00 00 00 01 41 "
    "00 00 00 03 00 00 00 00 "
    "5B AB B1 D3";

}  // namespace

TEST(StoredConfigurations, encodeAndDecodeExample) {
    const Payloads payloads = {{0, {'A'}}, {3, {}}};
    EXPECT_EQ(toHexadecimal(encode(payloads)), STATE_BYTES);
    Payloads read;
    ASSERT_TRUE(decode(fromHexadecimal(STATE_BYTES), read));
    EXPECT_EQ(read, payloads);
}

TEST(StoredConfigurations, rejectDamageAndTruncation) {
    const Bytes whole = fromHexadecimal(STATE_BYTES);
    for (std::size_t position = 0; position < whole.size(); ++position) {
        Payloads read = {{9, {9}}};
        Bytes damaged = whole;
        damaged[position] = static_cast<unsigned char>(damaged[position] ^ 0x10);
        EXPECT_FALSE(decode(damaged, read)) << position;
        EXPECT_FALSE(decode(cut(whole, position), read)) << position;
        EXPECT_EQ(read, (Payloads{{9, {9}}}));
    }
    Bytes longer = whole;
    longer.push_back(0);
    Payloads read;
    EXPECT_FALSE(decode(longer, read));
}

TEST_F(ConfigurationStoreTest, startsWithInitialConfigurationsAndStoresThem) {
    {
        const ConfigurationStore store(path, description);
        EXPECT_EQ(store.read(0), (Bytes{'i', 0}));
        EXPECT_EQ(store.read(2), (Bytes{'i', 2}));
        EXPECT_TRUE(store.read(1).empty());
        EXPECT_TRUE(store.read(99).empty());
    }
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);

    // From then on a change of the description does not change the partition's configuration.
    BoardDescription changed = description;
    changed.partitions[0].initialPayload = {'n', 'e', 'w'};
    EXPECT_EQ(ConfigurationStore(path, changed).read(0), (Bytes{'i', 0}));
}

TEST_F(ConfigurationStoreTest, replacedConfigurationsArePersistent) {
    {
        ConfigurationStore store(path, description);
        ASSERT_TRUE(store.replace({0, 2}, {1, 2, 3}));
        ASSERT_TRUE(store.replace({2}, {}));
        EXPECT_EQ(store.read(0), (Bytes{1, 2, 3}));
        EXPECT_TRUE(store.read(2).empty());
    }
    const ConfigurationStore store(path, description);
    EXPECT_EQ(store.read(0), (Bytes{1, 2, 3}));
    EXPECT_TRUE(store.read(2).empty());
}

TEST_F(ConfigurationStoreTest, sumsAreThoseOfTheCurrentConfigurations) {
    const auto expectSums = [](const ConfigurationStore& store) {
        for (unsigned int partition = 0; partition < 4; ++partition) {
            EXPECT_EQ(store.sumOf(partition), Host::sha256Hex(store.read(partition))) << partition;
        }
    };
    {
        ConfigurationStore store(path, description);
        expectSums(store);
        ASSERT_TRUE(store.replace({0, 2}, {1, 2, 3}));
        expectSums(store);
        EXPECT_FALSE(store.replace({2}, {4}, [] { return false; }));
        expectSums(store);
    }
    expectSums(ConfigurationStore(path, description));
}

TEST_F(ConfigurationStoreTest, keepsConfigurationOfRemovedPartition) {
    { const ConfigurationStore store(path, description); }
    BoardDescription smaller;
    smaller.partitions.resize(1);
    smaller.partitions[0] = description.partitions[0];
    {
        ConfigurationStore store(path, smaller);
        ASSERT_TRUE(store.replace({0}, {7}));
    }
    EXPECT_EQ(ConfigurationStore(path, description).read(2), (Bytes{'i', 2}));
}

TEST_F(ConfigurationStoreTest, newPartitionGetsInitialConfiguration) {
    {
        ConfigurationStore store(path, description);
        ASSERT_TRUE(store.replace({0}, {7}));
    }
    BoardDescription larger = description;
    larger.partitions[1].installed = true;
    larger.partitions[1].initialPayload = {'n'};
    for (int time = 0; time < 2; ++time) {
        const ConfigurationStore store(path, larger);
        EXPECT_EQ(store.read(0), Bytes{7});
        EXPECT_EQ(store.read(1), Bytes{'n'});
    }
}

TEST_F(ConfigurationStoreTest, failedReplacementChangesNothing) {
    ConfigurationStore store(path, description);
    std::filesystem::rename(folder, folder + ".away");
    EXPECT_FALSE(store.replace({0, 2}, {1, 2, 3}));
    EXPECT_EQ(store.read(0), (Bytes{'i', 0}));
    EXPECT_EQ(store.read(2), (Bytes{'i', 2}));

    std::filesystem::rename(folder + ".away", folder);
    EXPECT_TRUE(store.replace({0}, {1}));
    EXPECT_EQ(store.read(0), Bytes{1});
}

TEST_F(ConfigurationStoreTest, doesNotOverwriteDamagedFile) {
    writeText(path, "damaged");
    EXPECT_EQ(whyNotOpened(),
              path +
                  " is damaged; move it away to start again from the configurations "
                  "of the board description");
    EXPECT_EQ(readText(path), "damaged");
}

TEST_F(ConfigurationStoreTest, refusesFolderInPlaceOfFile) {
    std::filesystem::create_directory(path);
    EXPECT_EQ(whyNotOpened(), "cannot read " + path + ": Invalid argument");
}

TEST_F(ConfigurationStoreTest, refusesMissingFolder) {
    std::filesystem::remove_all(folder);
    EXPECT_EQ(whyNotOpened(), "cannot write " + path + ": No such file or directory");
}

}  // namespace VeskLib::Test
