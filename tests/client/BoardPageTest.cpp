#include "client/page/BoardPage.h"

#include "client/Failure.h"

#include <gmock/gmock.h>

namespace {

using namespace Efictl;
using testing::ElementsAre;
using testing::Field;

std::string menuOf(int partitions) {
    std::string rows;
    for (int number = 0; number < partitions; ++number) {
        rows += "<tr><td data-label=\"Number\">" + std::to_string(number) +
                "</td><td data-label=\"Name\">Partition of the board</td><td>1.2</td>"
                "<td>today<time class=\"detail time\" datetime=\"2026-01-02T03:04:05Z\">x</time>"
                "<a href=\"/a\" aria-label=\"Back up\">Back up</a></td><td>never</td></tr>\n";
    }
    return "<!DOCTYPE html><title>Menu</title><form action=\"/logout.cgi\"><strong>admin</strong>"
           "</form><nav aria-labelledby=\"functions\"><a href=\"/activity.cgi\">A</a></nav>"
           "<section "
           "aria-labelledby=\"round\"><table><thead><tr><th>Number</th></tr></thead><tbody>" +
           rows + "</tbody></table></section>";
}

TEST(BoardPageTest, readsTheMenu) {
    const BoardPage page = readBoardPage(menuOf(2));
    EXPECT_TRUE(page.isMenu);
    EXPECT_THAT(page.partitions,
                ElementsAre(Field(&PartitionRow::number, 0U), Field(&PartitionRow::number, 1U)));
    EXPECT_EQ(page.partitions[1].name, "Partition of the board");
    EXPECT_EQ(page.partitions[1].lastBackup, "2026-01-02T03:04:05Z");
    EXPECT_EQ(page.partitions[1].lastRestore, "");
}

TEST(BoardPageTest, readsMenuOfManyPartitions) {
    EXPECT_EQ(readBoardPage(menuOf(128)).partitions.size(), 128U);
}

TEST(BoardPageTest, skipsRowsWithoutPartitionNumber) {
    for (const char* const number : {"", "x", "-1", "1x", " 1", "99999999999999"}) {
        std::string page = menuOf(1);
        page.replace(page.find(">0<"), 3, ">" + std::string(number) + "<");
        EXPECT_TRUE(readBoardPage(page).partitions.empty()) << number;
    }
}

TEST(BoardPageTest, returnsMostImportantNotice) {
    const BoardPage page = readBoardPage(
        "<div data-outcome=\"done\"><p data-message=\"70\" data-code=\"0\">Done</p></div>"
        "<div data-outcome=\"unknown\"><p class=\"outcome\">?</p><p data-message=\"71\" "
        "data-code=\"2002\">Not\n known</p><p class=\"partitions\">Partitions: 3</p></div>"
        "<div data-outcome=\"refused\"><p data-message=\"72\" data-code=\"1602\">No</p></div>");
    const Notice* const notice = page.notice();
    ASSERT_NE(notice, nullptr);
    EXPECT_EQ(notice->outcome, "unknown");
    EXPECT_EQ(notice->message, 71);
    EXPECT_EQ(notice->code, 2002);
    EXPECT_EQ(notice->text, "Not known Partitions: 3");
}

TEST(BoardPageTest, readsTheSelection) {
    const BoardPage page = readBoardPage(
        "<dl class=\"facts\"><dt>N</dt><dd>3</dd><dd> a &lt;b&gt; </dd><dd>2026-01-02 UTC</dd>"
        "<dd>1.2</dd></dl><table class=\"targets\"><tr><td><input></td><td>4</td><td>Four</td>"
        "<td>-</td><td></td></tr></table><input name=\"staged_file\" value=\"abc\">");
    ASSERT_TRUE(page.selection);
    EXPECT_EQ(page.selection->partition, 3U);
    EXPECT_EQ(page.selection->partitionName, " a <b> ");
    EXPECT_EQ(page.selection->stagedFile, "abc");
    ASSERT_EQ(page.selection->targets.size(), 1U);
    EXPECT_EQ(page.selection->targets[0].version, "-");
}

TEST(BoardPageTest, rejectsTooManyElements) {
    std::string page;
    for (int i = 0; i < 60000; ++i) {
        page += "<b a" + std::to_string(i) + ">";
    }
    EXPECT_THROW(readBoardPage(page), Failure);
}

TEST(BoardPageTest, readsNothingFromEmptyPage) {
    const BoardPage page = readBoardPage("");
    EXPECT_FALSE(page.isMenu);
    EXPECT_EQ(page.notice(), nullptr);
    EXPECT_FALSE(page.selection);
}

}  // namespace
