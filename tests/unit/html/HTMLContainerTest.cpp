#include "html/HTMLContainer.h"

#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"

namespace VeskLib::Test {

using Gui::HTMLContainer;

class HTMLContainerTest : public ScriptedTest {
protected:
    void fill(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            container.add(std::make_unique<ProbeComponent>(name));
        }
    }

    HTMLContainer container;
};

TEST_F(HTMLContainerTest, printsChildrenBackToBackInInsertionOrder) {
    fill({"c", "a", "b"});
    container.printHTML();
    EXPECT_EQ(output(), "cab");
}

TEST_F(HTMLContainerTest, printsBreaksOnlyBetweenChildren) {
    container.breakBetween = true;
    fill({"a", "b", "c"});
    container.printHTML();
    EXPECT_EQ(output(), "a<br>b<br>c");
}

TEST_F(HTMLContainerTest, printsNoBreakForOneChild) {
    container.breakBetween = true;
    fill({"a"});
    container.printHTML();
    EXPECT_EQ(output(), "a");
}

TEST_F(HTMLContainerTest, printsNothingWhenEmpty) {
    container.breakBetween = true;
    container.printHTML();
    EXPECT_EQ(output(), "");
}

TEST_F(HTMLContainerTest, hasNoBreaksByDefault) {
    EXPECT_FALSE(container.breakBetween);
}

TEST_F(HTMLContainerTest, isNotErrorEvenIfChildIs) {
    fill({"a"});
    EXPECT_FALSE(container.isError());
}

TEST_F(HTMLContainerTest, deletesChildrenInOrder) {
    {
        HTMLContainer shortLived;
        shortLived.add(std::make_unique<ProbeComponent>("b"));
        shortLived.add(std::make_unique<ProbeComponent>("a"));
    }
    EXPECT_THAT(calls(), testing::ElementsAre("new b", "new a", "delete b", "delete a"));
}

}  // namespace VeskLib::Test
