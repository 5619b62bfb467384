// Tests of EFIRestorePage after an upload by an unauthorized user.

#include "tests/unit/support/SelectionTest.h"

namespace VeskLib::Test {

class UnauthorizedSelectionTest : public SelectionTest, public testing::WithParamInterface<int> {
protected:
    UnauthorizedSelectionTest() { displayMode = GetParam(); }

    const std::string refusal =
        "putLog 0 lmsg 20020 [EFIRestorePage::makeSelectPage(): Authorization required.]";
};

// The back-end is queried anyway, and the components are dropped at the end.
TEST_P(UnauthorizedSelectionTest, isBuiltButShowsOnlyError) {
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptySelection);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"lmsg_getmsg", "putLog", "getMessage message 12", "delete TextString(onLoad",
                       "getInfo", "insertIntoMap form_action", "insertIntoMap table_pid",
                       "terminate", "delete TextString(restore"}),
                testing::ElementsAre("lmsg_getmsg 20020", refusal, "getMessage message 12/1033",
                                     "delete TextString(onLoadFunction(), false, false, 6)",
                                     "getInfo 0x0201002F", "getInfo 0x02010021",
                                     "insertIntoMap form_action", "getInfo 0x02010201",
                                     "lmsg_getmsg 20020", absent("0"), "insertIntoMap table_pid",
                                     "terminate", "delete TextString(restore, false, false, 6)"));
}

TEST_P(UnauthorizedSelectionTest, appendsTextOfFurtherFailure) {
    script.replies[0x02010021].errorCode = 1047;
    EXPECT_EQ(makePage()->getMessage(), "message 12/1033<br>lmsg 107 [the system status]");
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre(refusal, "putLog 0 lmsg 107 [the system status]"));
}

TEST_P(UnauthorizedSelectionTest, appendsTextOfEmptyList) {
    script.setPartitions({});
    EXPECT_EQ(makePage()->getMessage(), "message 12/1033<br>message 46/1026");
}

// The upload form that follows checks authority again.
TEST_P(UnauthorizedSelectionTest, removesUnreadableFile) {
    script.headerError = 1104;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033<br>message 64/1026<br>message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_TRUE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
    EXPECT_EQ(calls(stagedFileCalls), movedAndRemoved);
    EXPECT_THAT(
        calls({"putLog"}),
        testing::ElementsAre(
            refusal,
            "putLog 0 lmsg 20020 [EFIRestorePage::makeDispPage(): Authorization required.]"));
}

INSTANTIATE_TEST_SUITE_P(AnyDisplayModeButTwo, UnauthorizedSelectionTest,
                         testing::Values(0, 1, 3, -2));

}  // namespace VeskLib::Test
