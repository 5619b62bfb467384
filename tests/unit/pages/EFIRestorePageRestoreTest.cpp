// Tests of a restore posted to EFIRestorePage: which partitions it sends to the back-end.

#include "tests/unit/support/RestorePageTest.h"

#include <algorithm>
#include <limits>

namespace VeskLib::Test {

class RestoreStepTest : public RestorePageTest {
protected:
    RestoreStepTest() {
        post("2");
        script.setPartitions(std::vector<Partition>(8, {true, "name", {}}));
    }

    // Returns the requests sent to the back-end.
    static Calls restoreRequests() { return calls({"setInfo"}); }

    static std::string request(const std::string& bytes) {
        return "setInfo 0x020100A4 [" + bytes + "]";
    }
};

TEST_F(RestoreStepTest, runsStepsInOrder) {
    script.maxPartitionNumbers = {2};
    script.formFields["pid1"] = "1";
    const auto page = makePage();
    const Calls& all = calls();
    const auto first = std::find(all.begin(), all.end(), "makePage");
    const auto last = std::find(all.begin(), all.end(), "insertIntoMap form_action");
    EXPECT_THAT(
        Calls(first, last),
        testing::ElementsAre(
            "makePage", "getFormData hidden_status", "getFormData check_box", "getMaxPartitionNum",
            "getFormData pid0", "getMaxPartitionNum", "getFormData pid1", "getMaxPartitionNum",
            "setInfo 0x020100A4 [00 01 01]", "getMessage message 70/0", "getFormData message",
            "new TextString(/maintenance/efi_backup_restore.cgi, false, false, "
            "6)"));
    EXPECT_EQ(print(*page), uploadForm("2"));
    EXPECT_EQ(page->getMessage(), "message 70/0");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
}

TEST_F(RestoreStepTest, sendsSelectedPartitionsInOrder) {
    script.formFields["pid3"] = "3";
    script.formFields["pid1"] = "1";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 02 01 03")));
    // The partition table is not read, so nothing checks that a partition is installed.
    EXPECT_THAT(calls({"getInfo", "PartitionInfoPacket::isInstalled"}), testing::IsEmpty());
}

TEST_F(RestoreStepTest, sendsPartitionThatIsNotInstalled) {
    script.setPartitions({{false, "", {}}, {true, "name", {}}});
    script.formFields["pid0"] = "0";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 01 00")));
}

TEST_F(RestoreStepTest, ignoresFieldsBeyondPartitionCount) {
    script.maxPartitionNumbers = {3};
    script.formFields["pid2"] = "2";
    script.formFields["pid3"] = "3";
    script.formFields["pid-1"] = "1";
    script.formFields["pid01"] = "1";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 01 02")));
    EXPECT_THAT(calls({"getFormData pid"}),
                testing::ElementsAre("getFormData pid0", "getFormData pid1", "getFormData pid2"));
}

TEST_F(RestoreStepTest, readsTwoDigitNumbers) {
    script.maxPartitionNumbers = {12};
    script.formFields["pid11"] = "11";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 01 0B")));
}

struct ValueCase {
    const char* posted;
    const char* target;
};

std::ostream& operator<<(std::ostream& stream, const ValueCase& testCase) {
    return stream << "\"" << testCase.posted << "\"";
}

class PostedTargetTest : public RestoreStepTest, public testing::WithParamInterface<ValueCase> {};

// The target is the posted value, truncated to 8 bits, not the number in the field's name.
TEST_P(PostedTargetTest, isPassedOnUnchecked) {
    script.formFields["pid2"] = GetParam().posted;
    makePage();
    EXPECT_THAT(restoreRequests(),
                testing::ElementsAre(request(std::string("00 01 ") + GetParam().target)));
}

INSTANTIATE_TEST_SUITE_P(OfAField, PostedTargetTest,
                         testing::Values(ValueCase{"2", "02"}, ValueCase{"300", "2C"},
                                         ValueCase{"255", "FF"}, ValueCase{"256", "00"},
                                         ValueCase{"-1", "FF"}, ValueCase{"7", "07"},
                                         ValueCase{"", "00"}, ValueCase{"abc", "00"},
                                         ValueCase{" 5x", "05"}));

TEST_F(RestoreStepTest, keepsDuplicates) {
    script.formFields["pid1"] = "5";
    script.formFields["pid2"] = "5";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 02 05 05")));
}

// The back-end decides about an empty list.
TEST_F(RestoreStepTest, sendsEmptyList) {
    script.replies[0x020100A4].errorCode = 1540;
    const auto page = makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 00")));
    EXPECT_EQ(page->getMessage(), "message 71/1540");
    EXPECT_EQ(print(*page), uploadForm("2"));
}

TEST_F(RestoreStepTest, sendsEmptyListWhenPartitionCountIsZero) {
    script.maxPartitionNumbers = {0};
    script.formFields["pid0"] = "0";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 00")));
}

// A count above the largest int is negative.
TEST_F(RestoreStepTest, comparesPartitionNumbersSigned) {
    script.maxPartitionNumbers = {0x80000000U, 2};
    script.formFields["pid0"] = "0";
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 00")));
    EXPECT_THAT(calls({"getMaxPartitionNum", "getFormData pid"}),
                testing::ElementsAre("getMaxPartitionNum"));
}

TEST_F(RestoreStepTest, doesNotAccessStagedFile) {
    script.formFields["pid0"] = "0";
    makePage();
    EXPECT_THAT(calls({"new LockedFile", "new EFIConfFile", "rename", "remove"}),
                testing::IsEmpty());
}

TEST_F(RestoreStepTest, readsPartitionCountBeforeEachPass) {
    script.maxPartitionNumbers = {1, 3, 3, 2};
    for (int partition = 0; partition < 8; ++partition) {
        script.formFields["pid" + std::to_string(partition)] = std::to_string(partition);
    }
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 03 00 01 02")));
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(4));
}

class RestoreOfAllTest : public RestoreStepTest, public testing::WithParamInterface<const char*> {
protected:
    RestoreOfAllTest() {
        script.setPartitions({{true, "a", {}}, {false, "b", {}}, {true, "c", {}}, {true, "d", {}}});
        script.formFields["check_box"] = GetParam();
    }
};

// "All" means every partition that is installed now: the table is read again, and the partitions'
// own check boxes are ignored.
TEST_P(RestoreOfAllTest, sendsEveryInstalledPartitionOnce) {
    script.formFields["pid1"] = "1";
    script.formFields["pid2"] = "2";
    const auto page = makePage();
    EXPECT_THAT(calls({"getFormData", "getInfo", "getMaxPartitionNum", "PartitionInfo", "setInfo"}),
                testing::ElementsAre("getFormData hidden_status", "getFormData check_box",
                                     "getInfo 0x0201002F", "getMaxPartitionNum",
                                     "PartitionInfoPacket::isInstalled(0)", "getMaxPartitionNum",
                                     "PartitionInfoPacket::isInstalled(1)", "getMaxPartitionNum",
                                     "PartitionInfoPacket::isInstalled(2)", "getMaxPartitionNum",
                                     "PartitionInfoPacket::isInstalled(3)", "getMaxPartitionNum",
                                     request("00 03 00 02 03"), "getFormData message"));
    EXPECT_EQ(page->getMessage(), "message 70/0");
    EXPECT_EQ(print(*page), uploadForm("2"));
}

TEST_P(RestoreOfAllTest, readsPartitionCountBeforeEachPass) {
    script.maxPartitionNumbers = {1, 3, 3, 2};
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 02 00 02")));
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(4));
}

TEST_P(RestoreOfAllTest, comparesPartitionNumbersSigned) {
    script.maxPartitionNumbers = {std::numeric_limits<unsigned int>::max(), 1};
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 00")));
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(1));
}

TEST_P(RestoreOfAllTest, truncatesPartitionNumbersToEightBits) {
    std::vector<Partition> partitions(258);
    partitions[255] = partitions[257] = {true, "name", {}};
    script.setPartitions(partitions);
    makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 02 FF 01")));
}

// No restore is sent.
TEST_P(RestoreOfAllTest, failedPartitionTableShowsOnlyError) {
    script.replies[0x0201002F].errorCode = 1047;
    script.formFields["pid0"] = "0";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "lmsg 107 [the partition status]");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
    EXPECT_THAT(
        calls({"getInfo", "getMaxPartitionNum", "setInfo", "lmsg_getmsg", "putLog", "getMessage",
               "delete TextString(onLoad", "insertIntoMap form_action", "terminate",
               "delete SelectFile", "new LockedFile"}),
        testing::ElementsAre("getInfo 0x0201002F", "lmsg_getmsg 107",
                             "putLog 0 lmsg 107 [the partition status]", "lmsg_getmsg 107",
                             "delete TextString(onLoadFunction(), false, false, 6)",
                             "insertIntoMap form_action", "getMessage message 354/0", "terminate",
                             "delete SelectFile(filename, , form_name, 70, 0)"));
}

INSTANTIATE_TEST_SUITE_P(AnyBoxValue, RestoreOfAllTest, testing::Values("", "0", "on"));

TEST_F(RestoreStepTest, refusalShowsNoticeAndForm) {
    script.replies[0x020100A4].errorCode = 1540;
    script.formFields["pid0"] = "0";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 71/1540");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), uploadForm("2"));
    EXPECT_THAT(calls({"remove", "putLog"}), testing::IsEmpty());
}

TEST_F(RestoreStepTest, refusalUsesMessageOfErrorCode) {
    script.replies[0x020100A4].errorCode = 1551;
    EXPECT_EQ(makePage()->getMessage(), "message 353/1551");
}

TEST_F(RestoreStepTest, messageFieldAppendsToOutcome) {
    script.replies[0x020100A4].errorCode = 1549;
    script.formFields["message"] = "";
    EXPECT_EQ(makePage()->getMessage(), "message 73/1549<br>message 70/0");
}

// Authority is checked only when the form is rebuilt.
TEST_F(RestoreStepTest, sendsUnauthorizedRestoreThenShowsError) {
    displayMode = 0;
    script.formFields["pid0"] = "0";
    const auto page = makePage();
    EXPECT_THAT(restoreRequests(), testing::ElementsAre(request("00 01 00")));
    EXPECT_EQ(page->getMessage(), "message 70/0<br>message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_TRUE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
}

}  // namespace VeskLib::Test
