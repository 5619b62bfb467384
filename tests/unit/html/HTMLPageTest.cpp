#include <VeskLib/Gui/HTMLPage.h>

#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"

namespace VeskLib::Test {

using Gui::HTMLPage;

class HTMLPageTest : public ScriptedTest {};

TEST_F(HTMLPageTest, deletesGeneratorThenComponentsInNameOrder) {
    {
        HTMLPage page(1);
        page.componentMap["title"] = new ProbeComponent("t");
        page.componentMap["body"] = new ProbeComponent("b");
        page.componentMap["css"] = new ProbeComponent("c");
    }
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete HTMLCodeGenerator(shell 1)",
                                                        "delete b", "delete c", "delete t"));
}

TEST_F(HTMLPageTest, toleratesNullGenerator) {
    {
        HTMLPage page(1);
        delete page.generator;
        page.generator = nullptr;
        page.componentMap["body"] = new ProbeComponent("b");
    }
    EXPECT_THAT(calls({"delete"}),
                testing::ElementsAre("delete HTMLCodeGenerator(shell 1)", "delete b"));
}

TEST_F(HTMLPageTest, hasVirtualDestructor) {
    class DerivedPage : public HTMLPage {
    public:
        DerivedPage() : HTMLPage(1), probe("derived") {}

    private:
        ProbeComponent probe;
    };
    const std::unique_ptr<HTMLPage> page = std::make_unique<DerivedPage>();
    EXPECT_TRUE(std::has_virtual_destructor_v<HTMLPage>);
}

}  // namespace VeskLib::Test
