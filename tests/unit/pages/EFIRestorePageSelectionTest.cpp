// Tests of the target selection, which EFIRestorePage shows after an upload.

#include "tests/unit/support/SelectionTest.h"

#include <limits>
#include <stdexcept>

namespace VeskLib::Test {

class EFIRestorePageSelectionTest : public SelectionTest {};

// The form's own order is not fixed: the tests of the printed page cover its components.
TEST_F(EFIRestorePageSelectionTest, readsBoardAndFileInFixedOrder) {
    script.setPartitions({{false, "", {}}, {true, "name", {0x03}}});
    script.setBoards({3}, {3});
    script.setVersions({"", "", "", "4.5"});
    const auto page = makePage();
    EXPECT_THAT(
        calls({"getInfo", "setSkeletonFile", "new EFIConfFile", "getFileHeader", "delete",
               "new VersionInfoPacket", "getMaxPartitionNum", "PartitionInfoPacket::", "getNodeIds",
               "HardInstallInfoPacket::", "getBIOSVersion", "terminate"}),
        testing::ElementsAre(
            "delete LockedFile(/board/var/tmp/restored_eficonf.lock)", "getInfo 0x0201002F",
            "getInfo 0x02010021", "setSkeletonFile /usr/local/www/skel/skeleton_efi_rstr_slct.txt",
            "new EFIConfFile(/board/var/tmp/restored_eficonfS1)", "getFileHeader",
            "delete EFIConfFile(/board/var/tmp/restored_eficonfS1)", "new VersionInfoPacket()",
            "getInfo 0x02010201", "getMaxPartitionNum", "PartitionInfoPacket::isInstalled(0)",
            "getMaxPartitionNum", "PartitionInfoPacket::isInstalled(1)", "getNodeIds(1)",
            "HardInstallInfoPacket::isInstalled(0, 3)", "HardInstallInfoPacket::isHome(0, 3, 0)",
            "getBIOSVersion(3, 0)", "getMaxPartitionNum", "delete VersionInfoPacket()",
            "terminate"));
}

TEST_F(EFIRestorePageSelectionTest, showsRowForEachInstalledPartition) {
    script.setPartitions({{true, "first", {0x05}}, {false, "gap", {0x01}}, {true, "third", {}}});
    script.setBoards({1, 5}, {1, 5});
    script.setVersions({"", "wrong", "", "", "", "10.20.30"});
    const auto page = makePage();
    EXPECT_EQ(print(*page), selectionWith(row("0", "first", "10.20.30") + row("2", "third", "-")));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"putLog"}), testing::ElementsAre(absent("2")));
}

// No row is preselected or disabled, whatever its version and whatever partition the file is from.
TEST_F(EFIRestorePageSelectionTest, treatsAllRowsAlike) {
    script.setPartitions({{true, "same version", {0x00}},
                          {true, "other version", {0x01}},
                          {true, "no home board", {}},
                          {true, "", {}},
                          {true, "the file's", {0x00}}});
    script.setBoards({0, 1}, {0, 1});
    script.setVersions({"1.23 B", "-"});
    EXPECT_EQ(print(*makePage()),
              selectionWith(row("0", "same version", "1.23 B") + row("1", "other version", "-") +
                            row("2", "no home board", "-") + row("3", "", "-") +
                            row("4", "the file's", "1.23 B")));
}

TEST_F(EFIRestorePageSelectionTest, printsNamesNumbersAndVersionsUnescaped) {
    std::vector<Partition> partitions(11);
    partitions[10] = {true, "<&\"'> %s ü", {0x00}};
    script.setPartitions(partitions);
    script.setBoards({0}, {0});
    script.setVersions({"<1>"});
    EXPECT_EQ(print(*makePage()), selectionWith(row("10", "<&\"'> %s ü", "<1>")));
}

TEST_F(EFIRestorePageSelectionTest, showsFileDetails) {
    script.filePartition = std::numeric_limits<unsigned int>::max();
    script.filePartitionName = "<file>";
    script.fileVersion = "-";
    script.fileHeader.saveTime = 1796083199;  // the last second of 30 November 2026
    EXPECT_THAT(print(*makePage()),
                testing::AllOf(testing::HasSubstr("\n|pid=" + text("4294967295") + "\n|"),
                               testing::HasSubstr("\n|part_name=" + text("<file>") + "\n|"),
                               testing::HasSubstr("\n|version=" + text("-") + "]"),
                               testing::HasSubstr("\n|date=" + text("2026-11-30") + "\n|")));
}

// The header's first field is not a date.
TEST_F(EFIRestorePageSelectionTest, showsFileDateInLocalTime) {
    const ScopedEnvironment east("TZ", "JST-9");
    script.fileHeader.revision = 1794657600;
    script.fileHeader.saveTime = 1236384000 - 1;
    EXPECT_THAT(print(*makePage()), testing::HasSubstr("\n|date=" + text("2009-03-07") + "\n|"));
}

TEST_F(EFIRestorePageSelectionTest, showsPreviousYearWestOfGreenwich) {
    const ScopedEnvironment west("TZ", "EST5");
    script.fileHeader.saveTime = 1798761600;  // 1 January 2027, midnight UTC
    EXPECT_THAT(print(*makePage()), testing::HasSubstr("\n|date=" + text("2026-12-31") + "\n|"));
}

TEST_F(EFIRestorePageSelectionTest, usesDisplayModeAtPrintTime) {
    const auto page = makePage();
    displayMode = 0;
    const std::string printed = print(*page);
    EXPECT_THAT(printed, testing::HasSubstr("CheckBox(, , form_name, 0){box(check_box"));
    EXPECT_THAT(printed, testing::HasSubstr("CheckBox(, , form_name, 0){box(pid0"));
}

// The count may change during the loop.
TEST_F(EFIRestorePageSelectionTest, readsPartitionCountBeforeEachPass) {
    script.setPartitions(std::vector<Partition>(5, {true, "name", {}}));
    script.maxPartitionNumbers = {1, 3, 3, 2};
    EXPECT_EQ(print(*makePage()),
              selectionWith(row("0", "name", "-") + row("1", "name", "-") + row("2", "name", "-")));
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(4));
}

// Unlike on the backup screen, a count above the largest int is negative.
TEST_F(EFIRestorePageSelectionTest, comparesPartitionNumbersSigned) {
    script.maxPartitionNumbers = {std::numeric_limits<unsigned int>::max(), 1};
    EXPECT_EQ(makePage()->getMessage(), "message 46/1026");
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(1));
}

TEST_F(EFIRestorePageSelectionTest, showsUnknownVersionsWhenRequestFails) {
    script.setPartitions({{true, "first", {0x00}}, {true, "second", {0x01}}});
    script.setBoards({0, 1}, {0, 1});
    script.setVersions({"1.0", "2.0"});
    script.replies[0x02010201].errorCode = 1047;
    const auto page = makePage();
    EXPECT_EQ(print(*page), selectionWith(row("0", "first", "-") + row("1", "second", "-")));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_THAT(calls({"putLog", "getBIOSVersion", "getErrorCode"}), testing::IsEmpty());
    EXPECT_THAT(calls({"HardInstallInfoPacket::isHome"}), testing::SizeIs(2));
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
}

// Unavailable data is traced and shown with the same text, and the upload form is not built.
TEST_F(EFIRestorePageSelectionTest, failedPartitionTableShowsOnlyError) {
    script.replies[0x0201002F].errorCode = 1047;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "lmsg 107 [the partition status]");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"getInfo", "lmsg_getmsg", "putLog", "setSkeletonFile", "getMessage",
                       "new EFIConf", "insertIntoMap", "delete TextString", "terminate"}),
                testing::ElementsAre(
                    "insertIntoMap onload_function", "getInfo 0x0201002F", "lmsg_getmsg 107",
                    "putLog 0 lmsg 107 [the partition status]", "lmsg_getmsg 107",
                    "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

TEST_F(EFIRestorePageSelectionTest, failedHardwareInfoShowsOnlyError) {
    script.replies[0x02010021].errorCode = 1047;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "lmsg 107 [the system status]");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"getInfo", "lmsg_getmsg", "putLog", "setSkeletonFile", "getMessage",
                       "new EFIConf", "insertIntoMap", "delete TextString", "terminate"}),
                testing::ElementsAre(
                    "insertIntoMap onload_function", "getInfo 0x0201002F", "getInfo 0x02010021",
                    "lmsg_getmsg 107", "putLog 0 lmsg 107 [the system status]", "lmsg_getmsg 107",
                    "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

class UnreadableFileTest : public EFIRestorePageSelectionTest,
                           public testing::WithParamInterface<bool> {
protected:
    UnreadableFileTest() { (GetParam() ? script.openError : script.headerError) = 1104; }
};

// The exception's code is not shown.
TEST_P(UnreadableFileTest, isRemovedAndUploadFormShownAgain) {
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 64/1026");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), uploadForm("2", true));
    EXPECT_EQ(calls(stagedFileCalls), movedAndRemoved);
    EXPECT_THAT(calls({"putLog", "new VersionInfo", "getMaxPartitionNum"}), testing::IsEmpty());
    EXPECT_THAT(
        calls({"setSkeletonFile", "getMessage", "remove", "insertIntoMap form_action",
               "insertIntoMap hidden_status", "insertIntoMap message", "delete HiddenField",
               "delete TextString", "terminate"}),
        testing::ElementsAre(
            "setSkeletonFile /usr/local/www/skel/skeleton_efi_rstr_slct.txt",
            "insertIntoMap form_action", "insertIntoMap hidden_status", "insertIntoMap message",
            "getMessage message 64/1026",
            "setSkeletonFile /usr/local/www/skel/skeleton_efi_rstr.txt",
            "remove /board/var/tmp/restored_eficonfS1", "insertIntoMap form_action, replacing",
            "delete TextString(/maintenance/efi_backup_restore.cgi, false, false, 6)",
            "insertIntoMap hidden_status, replacing",
            "delete HiddenField(hidden_status, 2, form_name)", "insertIntoMap message, replacing",
            "delete TextString(caption 1003, false, false, 6)", "getMessage message 354/0",
            "insertIntoMap message0", "terminate"));
}

TEST_P(UnreadableFileTest, failedRemovalIsTracedAndShowsSamePage) {
    script.removeError = 13;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 64/1026");
    EXPECT_EQ(print(*page), uploadForm("2", true));
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre(
                    "putLog 0 lmsg 20011 [remove(/board/var/tmp/restored_eficonfS1)] [13]"));
}

INSTANTIATE_TEST_SUITE_P(WhenOpenedOrRead, UnreadableFileTest, testing::Bool());

// The lock is released while the file is read, and acquired again to remove it. If that fails, the
// exception leaves the constructor, and every component is freed.
TEST_F(EFIRestorePageSelectionTest, throwsWhenUnreadableFileCannotBeLocked) {
    script.headerError = 1104;
    const Calls livingBefore = Scripted::livingObjects();
    script.replies[0x02010021].fill = [this](VeskUi::SerializableObject&) {
        script.lockError = 1101;
    };
    EXPECT_EQ(thrownDetail([&] { makePage(); }), 1101);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"terminate"}), testing::IsEmpty());
}

TEST_F(EFIRestorePageSelectionTest, propagatesOtherExceptionsAndKeepsFile) {
    const Calls livingBefore = Scripted::livingObjects();
    for (const char* place : {"new EFIConfFile", "getFileHeader"}) {
        Scripted::forgetCalls();
        Scripted::throwAt(place, std::make_exception_ptr(std::runtime_error("other")));
        EXPECT_THROW(makePage(), std::runtime_error) << place;
        EXPECT_EQ(Scripted::livingObjects(), livingBefore) << place;
        EXPECT_EQ(calls(stagedFileCalls), onlyMoved) << place;
        EXPECT_THAT(calls({"getMessage", "putLog", "terminate"}), testing::IsEmpty()) << place;
        // Otherwise the next place would not be reached.
        Scripted::throwAt(place, nullptr);
    }
}

TEST_F(EFIRestorePageSelectionTest, zeroPartitionCountMeansNoneInstalled) {
    script.maxPartitionNumbers = {0};
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 46/1026");
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptySelection);
    EXPECT_THAT(calls({"PartitionInfoPacket::isInstalled", "putLog"}), testing::IsEmpty());
}

TEST_F(EFIRestorePageSelectionTest, keepsFileButShowsOnlyErrorWhenNoneInstalled) {
    script.setPartitions({{false, "name", {0x00}}, {false, "", {}}});
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 46/1026");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptySelection);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"putLog", "getNodeIds"}), testing::IsEmpty());
    // Twenty-three components that record their deletion; the row container does not.
    EXPECT_THAT(calls({"delete TextString", "delete HiddenField", "delete SelectFile",
                       "delete Button", "delete CheckBox"}),
                testing::SizeIs(23));
    EXPECT_THAT(
        calls({"insertIntoMap table_pid", "getMessage message 46", "terminate"}),
        testing::ElementsAre("insertIntoMap table_pid", "getMessage message 46/1026", "terminate"));
}

// Wherever building throws, every component is freed.
TEST_F(EFIRestorePageSelectionTest, freesPageWhenBuildingThrows) {
    script.setPartitions({{true, "first", {}}, {true, "second", {}}});
    const Calls livingBefore = Scripted::livingObjects();
    for (const char* place : {"form_action", "information", "tablepid", "part_name", "filename",
                              "install", "check_box", "pid", "version", "table_pid"}) {
        script.insertErrors = {{place, 7}};
        EXPECT_EQ(thrownDetail([&] { makePage(); }), 7) << place;
        EXPECT_EQ(Scripted::livingObjects(), livingBefore) << place;
    }
}

}  // namespace VeskLib::Test
