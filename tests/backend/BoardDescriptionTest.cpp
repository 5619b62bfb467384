#include "board/backend/BoardDescription.h"

#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/RootTest.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace VeskLib::Test {

using namespace Board;

namespace {

class BoardDescriptionTest : public RootTest {
protected:
    BoardDescription load(const std::string& text) const {
        writePrivateText(path, text);
        return loadBoardDescription(path);
    }

    // Checks that the error message begins with the path, and returns the rest.
    std::string complaint(const std::string& text) const {
        writePrivateText(path, text);
        return complaintAboutFile();
    }

    std::string complaintAboutFile() const {
        try {
            loadBoardDescription(path);
            return "nothing";
        } catch (const std::runtime_error& failure) {
            const std::string what = failure.what();
            EXPECT_TRUE(what.starts_with(path + ":")) << what;
            EXPECT_EQ(what.find('\n'), std::string::npos) << what;
            return what.substr(std::min(path.size() + 1, what.size()));
        }
    }

    const std::string path = at("board.toml");
};

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

TEST_F(BoardDescriptionTest, smallestDescriptionIsAnEmptyBoard) {
    const BoardDescription description = load("max_partitions = 0");
    EXPECT_TRUE(description.partitions.empty());
    EXPECT_TRUE(description.users.empty());
    EXPECT_FALSE(description.isInstalled(0));
    for (const SystemBoard& board : description.systemBoards) {
        EXPECT_FALSE(board.installed || board.home);
        EXPECT_EQ(board.biosVersion, "-");
    }
}

TEST_F(BoardDescriptionTest, readsEveryKey) {
    const BoardDescription description = load(R"(
        max_partitions = 3
        name = "Rack 4, row 12"
        io_boards = [0, 15]
        gsp_boards = [2]

        [[system_board]]
        number = 3
        home = true
        bios_version = "1.23 B"

        [[system_board]]
        number = 4

        [[partition]]
        number = 2
        name = "Zürich 開発"
        node_ids = [0x21, 0x13]
        running = true

        [[user]]
        name = "admin"
        password_hash = "$6$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiOQSpT0Y77vwPZN.Pq.H91p5hVO1"
        functions = [105, 106]

        [[user]]
        name = "root"
        password_hash = "$6$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiOQSpT0Y77vwPZN.Pq.H91p5hVO1"
        every_function = true
    )");
    EXPECT_EQ(description.name, "Rack 4, row 12");
    ASSERT_EQ(description.partitions.size(), 3U);
    EXPECT_FALSE(description.isInstalled(0));
    EXPECT_TRUE(description.isInstalled(2));
    EXPECT_FALSE(description.isInstalled(3));
    EXPECT_EQ(description.partitions[2].name, "Zürich 開発");
    EXPECT_EQ(description.partitions[2].nodeIds, (Bytes{0x21, 0x13}));
    EXPECT_TRUE(description.partitions[2].running);
    EXPECT_TRUE(description.partitions[2].initialPayload.empty());
    EXPECT_TRUE(description.ioBoards[0] && description.ioBoards[15] && description.gspBoards[2]);
    EXPECT_EQ(std::count(description.ioBoards.begin(), description.ioBoards.end(), true), 2);
    EXPECT_TRUE(description.systemBoards[3].installed && description.systemBoards[3].home);
    EXPECT_TRUE(description.systemBoards[4].installed);
    EXPECT_FALSE(description.systemBoards[4].home);
    EXPECT_EQ(description.systemBoards[4].biosVersion, "-");
    ASSERT_EQ(description.users.size(), 2U);
    EXPECT_EQ(description.users[0].rights.functions, ",105,106,");
    EXPECT_FALSE(description.users[0].rights.everyFunction);
    EXPECT_EQ(description.users[1].rights.functions, "");
    EXPECT_TRUE(description.users[1].rights.everyFunction);
}

TEST_F(BoardDescriptionTest, takesVersionFromFirstHomeBoardInNodeList) {
    const BoardDescription description = load(R"(
        max_partitions = 5
        system_board = [
            { number = 1, bios_version = "1.0" },
            { number = 2, bios_version = "2.0", home = true },
            { number = 3, bios_version = "3.0", home = true },
        ]
        partition = [
            { number = 0, name = "not home, then home", node_ids = [1, 3, 2] },
            { number = 1, name = "bit 4 says nothing", node_ids = [0x12] },
            { number = 2, name = "other kinds of board", node_ids = [0x22, 0x43, 0x82] },
            { number = 3, name = "not installed", node_ids = [0x04] },
            { number = 4, name = "no boards" },
        ]
    )");
    const char* const versions[] = {"3.0", "2.0", "-", "-", "-"};
    for (std::size_t i = 0; i < std::size(versions); ++i) {
        EXPECT_EQ(description.biosVersionOf(description.partitions[i]), versions[i]) << i;
    }
}

TEST_F(BoardDescriptionTest, makesInitialPayloadFromSettingsAndFillBytes) {
    const std::string text = R"(
        max_partitions = 3
        [[partition]]
        number = 0
        name = "settings"
        [partition.settings]
        "Secure boot" = true
        "Network boot" = false
        "Boot timeout" = 5
        "Boot order" = "HDD0, PXE"
        [[partition]]
        number = 1
        name = "fill bytes"
        fill_bytes = 1000
        [partition.settings]
        "A" = ""
        [[partition]]
        number = 2
        name = "other fill bytes"
        fill_bytes = 1000
    )";
    const BoardDescription description = load(text);
    EXPECT_EQ(textOf(description.partitions[0].initialPayload),
              "Boot order=HDD0, PXE\nBoot timeout=5\nNetwork boot=false\nSecure boot=true\n");
    const Bytes& first = description.partitions[1].initialPayload;
    const Bytes& second = description.partitions[2].initialPayload;
    EXPECT_EQ(first.size(), 1003U);
    EXPECT_EQ(textOf(cut(first, 3)), "A=\n");
    EXPECT_EQ(second.size(), 1000U);
    EXPECT_NE(Bytes(first.begin() + 3, first.end()), second);
    EXPECT_EQ(load(text).partitions[1].initialPayload, first);
}

TEST_F(BoardDescriptionTest, limitsConfigurationToLargestFile) {
    const std::string start = "max_partitions=1\npartition=[{number=0, name='', fill_bytes=";
    const unsigned int most = Host::LARGEST_CONFIGURATION_FILE - 32 - 1;  // "-" is the version
    EXPECT_EQ(load(start + std::to_string(most) + "}]").partitions[0].initialPayload.size(), most);
    EXPECT_EQ(complaint(start + std::to_string(most + 1) + "}]"),
              "2:43: the partition's configuration file would be larger than 393216 bytes");
}

TEST_F(BoardDescriptionTest, locatesSyntaxError) {
    EXPECT_TRUE(complaint("max_partitions = 1\nname = \"open\n").starts_with("2:13: "))
        << complaintAboutFile();
    EXPECT_TRUE(complaint("a = 1\na = 2\n").starts_with("2:")) << complaintAboutFile();
    EXPECT_TRUE(complaint("a = \"\xFF\"").starts_with("1:")) << complaintAboutFile();
}

TEST_F(BoardDescriptionTest, namesUnreadableFile) {
    EXPECT_NE(complaintAboutFile(), "nothing");
}

TEST_F(BoardDescriptionTest, locatesEveryMistake) {
    const std::string board = "max_partitions = 2\n";
    const std::string partition = board + "[[partition]]\nname = 'a'\n";
    const std::string user = board + "[[user]]\n";
    const std::string hash =
        "password_hash = "
        "'$6$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiOQSpT0Y77vwPZN.Pq."
        "H91p5hVO1'\n";
    const struct {
        std::string text;
        const char* complaint;
    } mistakes[] = {
        {"", "1:1: \"max_partitions\" is missing"},
        {"max_partitions = 257", "1:18: \"max_partitions\" must be a number from 0 to 256"},
        {"max_partitions = -1", "1:18: \"max_partitions\" must be a number from 0 to 256"},
        {"max_partitions = '8'", "1:18: \"max_partitions\" must be a number from 0 to 256"},
        {"max_partitions = 1.0", "1:18: \"max_partitions\" must be a number from 0 to 256"},
        {board + "max_partition = 2", "2:17: unknown key \"max_partition\""},
        {board + "name = 3", "2:8: \"name\" must be a text"},
        {board + "name = \"a\\nb\"",
         "2:8: \"name\" must be at most 100 bytes without control characters"},
        {board + "name = '" + std::string(101, 'n') + "'",
         "2:8: \"name\" must be at most 100 bytes without control characters"},
        {board + "io_boards = 3", "2:13: \"io_boards\" must be a list of numbers"},
        {board + "io_boards = [0, 16]", "2:17: \"io_boards\" must be a number from 0 to 15"},
        {board + "partition = 1", "2:13: \"partition\" must be written as [[partition]]"},
        {board + "[partition]", "2:1: \"partition\" must be written as [[partition]]"},
        {board + "[[system_board]]\nhome = true", "2:1: \"number\" is missing"},
        {board + "[[system_board]]\nnumber = 16", "3:10: \"number\" must be a number from 0 to 15"},
        {board + "[[system_board]]\nnumber = 1\n[[system_board]]\nnumber = 1",
         "5:10: system board 1 is described twice"},
        {board + "[[system_board]]\nnumber = 1\nhome = 1", "4:8: \"home\" must be true or false"},
        {board + "[[system_board]]\nnumber = 1\nversion = '1'", "4:11: unknown key \"version\""},
        {board + "[[system_board]]\nnumber = 1\nbios_version = 1",
         "4:16: \"bios_version\" must be a text"},
        {board + "[[system_board]]\nnumber = 1\nbios_version = '" + std::string(256, 'v') + "'",
         "4:16: \"bios_version\" must be at most 255 bytes without control characters"},
        {partition + "number = 2", "4:10: \"max_partitions\" leaves no room for partition 2"},
        {partition + "number = 1\n[[partition]]\nname = 'b'\nnumber = 1",
         "7:10: partition 1 is described twice"},
        {board + "[[partition]]\nnumber = 1", "2:1: \"name\" is missing"},
        {board + "[[partition]]\nnumber = 1\nname = \"a\\nb\"",
         "4:8: \"name\" must be at most 1023 bytes without control characters"},
        {partition + "number = 1\nnode_ids = [256]",
         "5:13: \"node_ids\" must be a number from 0 to 255"},
        {partition + "number = 1\nsettings = 3", "5:12: \"settings\" must be a table"},
        {partition + "number = 1\n[partition.settings]\n\"a=b\" = 1",
         "6:9: a setting is one line: \"name\" = text, number or flag"},
        {partition + "number = 1\n[partition.settings]\n\"\" = 1",
         "6:6: a setting is one line: \"name\" = text, number or flag"},
        {partition + "number = 1\n[partition.settings]\na = \"1\\n2\"",
         "6:5: a setting is one line: \"name\" = text, number or flag"},
        {partition + "number = 1\n[partition.settings]\na = \"1\\u007f2\"",
         "6:5: a setting is one line: \"name\" = text, number or flag"},
        {partition + "number = 1\n[partition.settings]\n\"a\\n\" = 1",
         "6:9: a setting is one line: \"name\" = text, number or flag"},
        {partition + "number = 1\n[partition.settings]\na = 1.5",
         "6:5: a setting is one line: \"name\" = text, number or flag"},
        {user + "name = 'a'", "2:1: \"password_hash\" is missing"},
        {user + hash + "name = ''", "4:8: a user needs a unique name"},
        {user + hash + "name = 'a'\n[[user]]\n" + hash + "name = 'a'",
         "7:8: a user needs a unique name"},
        {user + "name = 'a'\npassword_hash = 'secret'", "4:17: not a password hash of crypt(3)"},
        {user + hash + "name = 'a'\nfunctions = 105",
         "5:13: \"functions\" must be a list of numbers"},
    };
    for (const auto& mistake : mistakes) {
        EXPECT_EQ(complaint(mistake.text), mistake.complaint) << mistake.text;
    }
}

// Each is the hash of "secret".
TEST_F(BoardDescriptionTest, rejectsWeakPasswordHashes) {
    for (const char* hash : {
             "$1$saltsalt$9xy1btjgzLYfb7hivXtC//",
             "$3$$878d8014606cda29677a44efa1353fc7",
             "$md5$saltsalt$$htFYkfcXgVn6XJq7JYvMH/",
             "$sha1$400$saltsalt$P/UT548p5MzbZ0vj7v1TmU9AyBRX",
             "$2b$04$abcdefghijklmnopqrstuu2r9OfJnfCsdneAXAGHnS4UpFFP8WIrW",
             "$2a$04$abcdefghijklmnopqrstuu2r9OfJnfCsdneAXAGHnS4UpFFP8WIrW",
             "$2y$04$abcdefghijklmnopqrstuu2r9OfJnfCsdneAXAGHnS4UpFFP8WIrW",
             "$5$saltsalt$0IyaXrmV7.sGNS6tirgqHLqX/G.FBvgkYA.lpPdS5sA",
             "$6$rounds=4999$saltsalt$GGq7iKzT3LZFpzUrZNgylsJpGjqR7TJ595gRu3e5tA6cxpeq0TJoKCIcT55q"
             "MOEZ57neeOktfxoF7owOmdSvI/",
         }) {
        EXPECT_EQ(complaint("max_partitions = 0\n[[user]]\nname = 'a'\npassword_hash = '" +
                            std::string(hash) + "'"),
                  "4:17: the method of this hash is too weak; make one with \"mkpasswd -m "
                  "yescrypt\"");
    }
}

TEST_F(BoardDescriptionTest, acceptsStrongPasswordHashes) {
    for (const char* hash : {
             "$y$j75T$saltsalt$0gBD67sgmJgRX3RZ6wHHO7sHimQEWGCWN85o4Twogh2",
             "$gy$j75T$saltsalt$Z2AC4hWkfKORG0LWhY01sMkijJ4fV2cmiComDBMYUwC",
             "$7$CU..../....saltsalt$NUwJnl2EzU4ACwYC9BDHKGDt.PCVFKyF6Hlr/CUA09D",
             "$6$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiOQSpT0Y77vwPZ"
             "N.Pq.H91p5hVO1",
             "$6$rounds=5000$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiO"
             "QSpT0Y77vwPZN.Pq.H91p5hVO1",
         }) {
        const BoardDescription description =
            load("max_partitions = 0\n[[user]]\nname = 'a'\npassword_hash = '" + std::string(hash) +
                 "'");
        EXPECT_EQ(description.users.at(0).passwordHash, hash);
    }
}

TEST_F(BoardDescriptionTest, rejectsFileThatOthersMayReadOrWrite) {
    for (const unsigned int mode : {0640U, 0620U, 0604U, 0602U}) {
        writeText(path, "max_partitions = 0");
        std::filesystem::permissions(path, static_cast<std::filesystem::perms>(mode));
        EXPECT_EQ(complaintAboutFile(), " others may read or write it: chmod 600 " + path);
    }
}

TEST_F(BoardDescriptionTest, rejectsFileOfAnotherUser) {
    writePrivateText(path, "max_partitions = 0");
    if (::chown(path.c_str(), 1, 1) != 0) {
        GTEST_SKIP() << "only root may give a file away";
    }
    EXPECT_EQ(complaintAboutFile(), " it belongs to another user");
}

TEST(DemoBoard, coversEveryCaseThatPagesHandle) {
    const BoardDescription demo = loadBoardDescription(DEMO_BOARD);
    ASSERT_EQ(demo.partitions.size(), 8U);
    const bool installed[] = {true, false, true, true, false, true, false, true};
    const char* const versions[] = {"10.20.30", "", "-", "1.23 B", "", "-", "", "1.40"};
    for (unsigned int number = 0; number < 8; ++number) {
        EXPECT_EQ(demo.isInstalled(number), installed[number]) << number;
        if (installed[number]) {
            EXPECT_EQ(demo.biosVersionOf(demo.partitions[number]), versions[number]) << number;
        }
        EXPECT_EQ(demo.partitions[number].running, number == 7) << number;
    }
    EXPECT_GT(demo.partitions[0].name.size(), 100U);
    EXPECT_NE(demo.partitions[2].name.find("開発"), std::string::npos);
    for (const char c : {'<', '>', '&', '"', '\''}) {
        EXPECT_NE(demo.partitions[3].name.find(c), std::string::npos) << c;
    }
    EXPECT_EQ(demo.partitions[3].nodeIds, (Bytes{0x13, 0x21}));
    EXPECT_GT(demo.partitions[5].initialPayload.size(), 390000U);
    ASSERT_EQ(demo.users.size(), 2U);
    EXPECT_EQ(demo.users[0].rights.functions, ",105,106,110,");
    EXPECT_EQ(demo.users[1].rights.functions, "");
}

TEST_F(BoardDescriptionTest, normalizesHostNames) {
    const BoardDescription description = load(R"(
        max_partitions = 1
        host_names = ["Board.EXAMPLE", "10.0.0.5", "fe80:0:0::1", "[FE80::2]", "a_b-c"])");
    EXPECT_EQ(description.hostNames, (std::vector<std::string>{"board.example", "10.0.0.5",
                                                               "[fe80::1]", "[fe80::2]", "a_b-c"}));
    EXPECT_TRUE(load("max_partitions = 1").hostNames.empty());
}

TEST_F(BoardDescriptionTest, rejectsInvalidHostNames) {
    const std::string longest = "\"" + std::string(254, 'a') + "\"";
    for (const std::string& names :
         {std::string("\"\""), std::string("\"a b\""), std::string("\"a:80\""),
          std::string("\"a.\""), std::string("\".a\""), std::string("\"a..b\""),
          std::string("\"http://a\""), std::string("\"[a]\""), std::string("\"*\""),
          std::string("\"a\\\"b\""), std::string("\"a|b\""), std::string("1"), longest}) {
        const std::string answer =
            complaint("max_partitions = 1\nhost_names = [\"good\", " + names + "]");
        EXPECT_TRUE(answer.starts_with("2:")) << answer;
    }
    EXPECT_TRUE(complaint("max_partitions = 1\nhost_names = \"a\"").starts_with("2:"));
}

}  // namespace VeskLib::Test
