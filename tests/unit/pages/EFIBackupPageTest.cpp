#include "pages/EFIBackupPage.h"

#include "tests/unit/support/PageTest.h"

#include <limits>

namespace VeskLib::Test {

using Gui::EFIBackupPage;
using Partition = VeskUi::PartitionInfoPacket::Partition;

class EFIBackupPageTest : public PageTest {
protected:
    std::unique_ptr<EFIBackupPage> makePage() {
        return std::make_unique<EFIBackupPage>(requester, formInfo, messageMgr, &displayMode);
    }

    std::string print(const EFIBackupPage& page) {
        const std::size_t before = output().size();
        page.printHTML();
        return output().substr(before);
    }

    // Returns the printed form with these rows.
    static std::string formWith(const std::string& rows) {
        return "[/usr/local/www/skel/skeleton_efi_backup.txt"
               "\n|form_action=TextString(/maintenance/efi_backup_restore.cgi, false, false, 6)"
               "\n|hidden_functionID=HiddenField(functionID, 105, form_name)"
               "\n|hidden_status=HiddenField(hidden_status, BACKUP, form_name)"
               "\n|item_download=TextString(caption 1006, false, true, 6)"
               "\n|item_part_name=TextString(caption 394, false, false, 6)"
               "\n|item_pid=TextString(caption 132, false, false, 6)"
               "\n|message=TextString(message 303/0, false, true, 6)"
               "\n|onload_function=TextString(onLoadFunction(), false, false, 6)"
               "\n|table_pid=" +
               rows + "]";
    }

    static std::string row(const std::string& number, const std::string& name) {
        return "[/usr/local/www/skel/skeleton_efi_backup_tbl.txt"
               "\n|part_name=TextString(" +
               name + ", false, false, 6)\n|pid=TextString(" + number +
               ", false, false, 6)\n|radio_button=RadioButton(radio_button, , form_name, "
               "2){choice(" +
               number + ", , false, false);}]";
    }

    const std::string emptyPage = "[/usr/local/www/skel/skeleton_efi_backup.txt]";
};

TEST_F(EFIBackupPageTest, hasExpectedConstants) {
    EXPECT_EQ(EFIBackupPage::skeletonFileName, "/usr/local/www/skel/skeleton_efi_backup.txt");
    EXPECT_STREQ(EFIBackupPage::BACKUP_MODE, "BACKUP");
    EXPECT_STREQ(EFIBackupPage::FILE_EXTENSION, ".dat");
}

// The form's own order is not fixed: the tests of the printed page cover its components.
TEST_F(EFIBackupPageTest, readsPartitionsInFixedOrder) {
    script.setPartitions({{false, "", {}}, {true, "name", {}}});
    const auto page = makePage();
    EXPECT_THAT(
        calls({"new HTMLCodeGenerator", "new VeskTrace", "new PartitionInfoPacket", "makePage",
               "getInfo", "getMaxPartitionNum", "PartitionInfoPacket::", "getPartitionName",
               "insertIntoMap table_pid", "terminate"}),
        testing::ElementsAre(
            "new HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup.txt)",
            "new VeskTrace(1, 2, 29697)", "new PartitionInfoPacket()", "makePage",
            "getInfo 0x0201002F", "getMaxPartitionNum", "PartitionInfoPacket::isInstalled(0)",
            "getMaxPartitionNum", "PartitionInfoPacket::isInstalled(1)",
            "new HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup_tbl.txt)",
            "getPartitionName(1)", "getMaxPartitionNum", "insertIntoMap table_pid", "terminate"));
}

TEST_F(EFIBackupPageTest, showsRowForEachInstalledPartition) {
    script.setPartitions({{true, "first", {}}, {false, "gap", {}}, {true, "third", {}}});
    const auto page = makePage();
    EXPECT_EQ(print(*page), formWith(row("0", "first") + row("2", "third")));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isError());
    EXPECT_FALSE(page->isAlert());
}

TEST_F(EFIBackupPageTest, printsNamesAndNumbersUnescaped) {
    std::vector<Partition> partitions(11);
    partitions[10] = {true, "<&\"'> %s ü", {}};
    script.setPartitions(partitions);
    EXPECT_EQ(print(*makePage()), formWith(row("10", "<&\"'> %s ü")));
}

TEST_F(EFIBackupPageTest, usesDisplayModeAtPrintTime) {
    script.setPartitions({{true, "name", {}}});
    const auto page = makePage();
    displayMode = 0;
    EXPECT_THAT(print(*page),
                testing::HasSubstr("radio_button=RadioButton(radio_button, , form_name, 0)"));
}

TEST_F(EFIBackupPageTest, deletesComponentsThenGeneratorThenTrace) {
    script.setPartitions({{true, "name", {}}});
    EXPECT_THAT(lastDeletions([this] { return makePage(); }),
                testing::ElementsAre(
                    "delete HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup.txt)",
                    "delete VeskTrace(1, 2, 29697)"));
}

// Wherever building throws, every component is freed.
TEST_F(EFIBackupPageTest, freesPageWhenBuildingThrows) {
    script.setPartitions({{true, "first", {}}, {true, "second", {}}});
    const Calls livingBefore = Scripted::livingObjects();
    for (const char* place : {"onload_function", "form_action", "item_part_name", "radio_button",
                              "part_name", "table_pid"}) {
        script.insertErrors = {{place, 7}};
        EXPECT_EQ(thrownDetail([&] { makePage(); }), 7) << place;
        EXPECT_EQ(Scripted::livingObjects(), livingBefore) << place;
    }
}

// The count may change during the loop.
TEST_F(EFIBackupPageTest, readsPartitionCountBeforeEachPass) {
    script.setPartitions(std::vector<Partition>(5, {true, "name", {}}));
    script.maxPartitionNumbers = {1, 3, 3, 2};
    EXPECT_EQ(print(*makePage()), formWith(row("0", "name") + row("1", "name") + row("2", "name")));
    EXPECT_THAT(calls({"getMaxPartitionNum"}), testing::SizeIs(4));
}

TEST_F(EFIBackupPageTest, comparesPartitionNumbersUnsigned) {
    script.setPartitions(std::vector<Partition>(2, {true, "name", {}}));
    script.maxPartitionNumbers = {std::numeric_limits<unsigned int>::max(), 1};
    EXPECT_EQ(print(*makePage()), formWith(row("0", "name")));
}

class UnauthorizedBackupPageTest : public EFIBackupPageTest,
                                   public testing::WithParamInterface<int> {};

TEST_P(UnauthorizedBackupPageTest, showsOnlyErrorAndSendsNoRequest) {
    script.setPartitions({{true, "name", {}}});
    displayMode = GetParam();
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(calls({"makePage", "getInfo", "putLog", "getMessage", "delete", "terminate"}),
                testing::ElementsAre(
                    "makePage",
                    "putLog 0 lmsg 20020 [EFIBackupPage::makeDispPage(): Authorization required.]",
                    "getMessage message 12/1033",
                    "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

INSTANTIATE_TEST_SUITE_P(AnyDisplayModeButTwo, UnauthorizedBackupPageTest,
                         testing::Values(0, 1, 3, -2));

TEST_F(EFIBackupPageTest, tracesAndShowsFailedPartitionTable) {
    script.replies[0x0201002F].errorCode = 1047;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "lmsg 107 [the partition status]");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(
        calls({"getInfo", "lmsg_getmsg", "putLog", "getMessage", "getErrorCode",
               "getMaxPartitionNum", "delete", "terminate"}),
        testing::ElementsAre("getInfo 0x0201002F", "lmsg_getmsg 107",
                             "putLog 0 lmsg 107 [the partition status]", "lmsg_getmsg 107",
                             "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

TEST_F(EFIBackupPageTest, zeroPartitionCountMeansNoneInstalled) {
    script.setPartitions({{true, "name", {}}});
    script.maxPartitionNumbers = {0};
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 46/1026");
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(calls({"PartitionInfoPacket::isInstalled", "putLog"}), testing::IsEmpty());
}

TEST_F(EFIBackupPageTest, dropsBuiltPageWhenNoPartitionIsInstalled) {
    script.setPartitions({{false, "name", {}}, {false, "", {}}});
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 46/1026");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
    // Eight components that record their deletion; the row container does not.
    EXPECT_THAT(calls({"delete TextString", "delete HiddenField"}), testing::SizeIs(8));
    EXPECT_THAT(
        calls({"insertIntoMap table_pid", "getMessage message 46", "terminate"}),
        testing::ElementsAre("insertIntoMap table_pid", "getMessage message 46/1026", "terminate"));
}

}  // namespace VeskLib::Test
