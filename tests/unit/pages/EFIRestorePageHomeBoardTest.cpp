// Tests of EFIRestorePage::getHomeSBNum(), which finds the board that supplies the BIOS version in
// a row of the target selection.

#include "tests/unit/support/SelectionTest.h"

namespace VeskLib::Test {

class HomeBoardTest : public SelectionTest {
protected:
    HomeBoardTest() {
        std::vector<std::string> versions;
        for (int board = 0; board < 16; ++board) {
            versions.push_back("of board " + std::to_string(board));
        }
        script.setVersions(versions);
    }

    // Installs partition 2 with these nodes, and partition 0 with others.
    void setNodes(const std::vector<unsigned char>& nodeIds) {
        script.setPartitions({{true, "other", {0x0F}}, {false, "", {}}, {true, "name", nodeIds}});
    }

    // Returns the printed selection, with this version in the row of partition 2.
    static std::string rowsWith(const std::string& version) {
        return selectionWith(row("0", "other", "of board 15") + row("2", "name", version));
    }

    // Returns the calls about boards, without those about the board of partition 0.
    static Calls boardCalls() {
        Calls all = calls({"HardInstallInfoPacket", "getBIOSVersion", "putLog"});
        std::erase_if(all,
                      [](const std::string& call) { return call.find("15") != std::string::npos; });
        return all;
    }
};

TEST_F(HomeBoardTest, isFirstInstalledHomeBoard) {
    setNodes({0x05, 0x02, 0x03, 0x04});
    script.setBoards({2, 3, 4, 15}, {3, 4, 5, 15});
    EXPECT_EQ(print(*makePage()), rowsWith("of board 3"));
    // Only installed boards are tested for being home, and the search ends at the first home board.
    EXPECT_THAT(boardCalls(), testing::ElementsAre("HardInstallInfoPacket::isInstalled(0, 5)",
                                                   "HardInstallInfoPacket::isInstalled(0, 2)",
                                                   "HardInstallInfoPacket::isHome(0, 2, 0)",
                                                   "HardInstallInfoPacket::isInstalled(0, 3)",
                                                   "HardInstallInfoPacket::isHome(0, 3, 0)",
                                                   "getBIOSVersion(3, 0)"));
}

// Boards are searched in the order of the nodes, not of the board numbers.
TEST_F(HomeBoardTest, isFirstInNodeOrder) {
    setNodes({0x09, 0x01});
    script.setBoards({1, 9, 15}, {1, 9, 15});
    EXPECT_EQ(print(*makePage()), rowsWith("of board 9"));
}

struct NodeCase {
    unsigned char node;
    int board;
};

std::ostream& operator<<(std::ostream& stream, const NodeCase& testCase) {
    return stream << "node " << static_cast<int>(testCase.node);
}

class SystemBoardNodeTest : public HomeBoardTest, public testing::WithParamInterface<NodeCase> {};

// Intended: bit 4 is ignored.
TEST_P(SystemBoardNodeTest, namesBoardInLowFourBits) {
    setNodes({GetParam().node});
    script.setBoards({GetParam().board, 15}, {GetParam().board, 15});
    EXPECT_EQ(print(*makePage()), rowsWith("of board " + std::to_string(GetParam().board)));
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfAPartition, SystemBoardNodeTest,
                         testing::Values(NodeCase{0x00, 0}, NodeCase{0x03, 3}, NodeCase{0x13, 3},
                                         NodeCase{0x10, 0}, NodeCase{0x0E, 14}, NodeCase{0x1E, 14},
                                         NodeCase{0x1F, 15}));

class OtherNodeTest : public HomeBoardTest, public testing::WithParamInterface<unsigned char> {};

// Any of the top three bits marks a board of another kind.
TEST_P(OtherNodeTest, isSkipped) {
    setNodes({GetParam()});
    script.setBoards({1, 15}, {1, 15});
    EXPECT_EQ(print(*makePage()), rowsWith("-"));
    EXPECT_THAT(boardCalls(), testing::ElementsAre(absent("2")));
}

TEST_P(OtherNodeTest, doesNotEndSearch) {
    setNodes({GetParam(), 0x01});
    script.setBoards({1, 15}, {1, 15});
    EXPECT_EQ(print(*makePage()), rowsWith("of board 1"));
}

INSTANTIATE_TEST_SUITE_P(OfAPartition, OtherNodeTest,
                         testing::Values(0x21, 0x41, 0x81, 0xE1, 0xF1, 0x31));

struct AbsentCase {
    const char* reason;
    std::vector<unsigned char> nodes;
    std::set<int> installed;
    std::set<int> home;
};

std::ostream& operator<<(std::ostream& stream, const AbsentCase& testCase) {
    return stream << testCase.reason;
}

class AbsentHomeBoardTest : public HomeBoardTest, public testing::WithParamInterface<AbsentCase> {};

TEST_P(AbsentHomeBoardTest, isTracedAndShowsUnknownVersion) {
    setNodes(GetParam().nodes);
    script.setBoards(GetParam().installed, GetParam().home);
    const auto page = makePage();
    EXPECT_EQ(print(*page), rowsWith("-"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_THAT(calls({"lmsg_getmsg", "putLog"}),
                testing::ElementsAre("lmsg_getmsg 20020", absent("2")));
    // No version is requested for a partition without a home board.
    EXPECT_THAT(calls({"getBIOSVersion"}), testing::ElementsAre("getBIOSVersion(15, 0)"));
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
}

INSTANTIATE_TEST_SUITE_P(
    OfAPartition, AbsentHomeBoardTest,
    testing::Values(AbsentCase{"no nodes", {}, {0, 15}, {0, 15}},
                    AbsentCase{"only other kinds", {0x21, 0xFF}, {1, 15}, {1, 15}},
                    AbsentCase{"installed but not home", {0x01}, {1, 15}, {15}},
                    AbsentCase{"home but not installed", {0x01}, {15}, {1, 15}},
                    AbsentCase{"one installed, another home", {0x01, 0x02}, {1, 15}, {2, 15}}));

TEST_F(HomeBoardTest, isSearchedForEachPartition) {
    script.setPartitions(
        {{true, "a", {0x01}}, {true, "b", {}}, {true, "c", {0x02}}, {true, "d", {0x21}}});
    script.setBoards({1, 2}, {1, 2});
    EXPECT_EQ(print(*makePage()), selectionWith(row("0", "a", "of board 1") + row("1", "b", "-") +
                                                row("2", "c", "of board 2") + row("3", "d", "-")));
    EXPECT_THAT(calls({"putLog"}), testing::ElementsAre(absent("1"), absent("3")));
}

// A missing home board is traced even if the versions are unknown.
TEST_F(HomeBoardTest, isTracedAsAbsentWithoutVersions) {
    setNodes({});
    script.setBoards({15}, {15});
    script.replies[0x02010201].errorCode = 1540;
    makePage();
    EXPECT_THAT(calls({"putLog"}), testing::ElementsAre(absent("2")));
}

}  // namespace VeskLib::Test
