#include "html/HTMLItem.h"

#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"

namespace VeskLib::Test {

using Gui::HTMLItem;

class HTMLItemTest : public ScriptedTest {};

TEST_F(HTMLItemTest, printsSkeletonWithItsOwnComponents) {
    HTMLItem item("/row.txt");
    item.add("second", new ProbeComponent("2"));
    item.add("first", new ProbeComponent("1"));
    item.printHTML();
    EXPECT_EQ(output(), "[/row.txt\n|first=1\n|second=2]");
}

TEST_F(HTMLItemTest, isEmptyByDefault) {
    HTMLItem("/row.txt").printHTML();
    EXPECT_EQ(output(), "[/row.txt]");
}

TEST_F(HTMLItemTest, insertsThroughPlatform) {
    HTMLItem item("/row.txt");
    item.add("name", new ProbeComponent("1"));
    EXPECT_THAT(calls({"insertIntoMap"}), testing::ElementsAre("insertIntoMap name"));
}

TEST_F(HTMLItemTest, deletesReplacedComponentAndPrintsLast) {
    HTMLItem item("/row.txt");
    item.add("name", new ProbeComponent("old"));
    item.add("name", new ProbeComponent("new"));
    item.printHTML();
    EXPECT_EQ(output(), "[/row.txt\n|name=new]");
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete old"));
}

TEST_F(HTMLItemTest, isNotErrorEvenIfComponentIs) {
    HTMLItem item("/row.txt");
    item.add("name", new ProbeComponent("1"));
    EXPECT_FALSE(item.isError());
}

TEST_F(HTMLItemTest, deletesComponentsInNameOrderThenGenerator) {
    {
        HTMLItem item("/row.txt");
        item.add("b", new ProbeComponent("2"));
        item.add("a", new ProbeComponent("1"));
    }
    EXPECT_THAT(calls({"delete"}),
                testing::ElementsAre("delete 1", "delete 2", "delete HTMLCodeGenerator(/row.txt)"));
}

TEST_F(HTMLItemTest, isUsableThroughInterface) {
    std::unique_ptr<Gui::HTMLItemInterface> item = std::make_unique<HTMLItem>("/row.txt");
    item->add("name", new ProbeComponent("1"));
    item->printHTML();
    EXPECT_EQ(output(), "[/row.txt\n|name=1]");
}

}  // namespace VeskLib::Test
