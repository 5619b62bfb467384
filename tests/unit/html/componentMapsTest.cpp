#include "html/componentMaps.h"

#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"

namespace VeskLib::Test {

class ComponentMapsTest : public ScriptedTest {
public:
    ~ComponentMapsTest() override { Gui::deleteComponents(components); }

protected:
    std::map<std::string, Gui::HTMLComponent*> components;
};

TEST_F(ComponentMapsTest, takesOwnershipOfInsertedComponent) {
    Gui::insertComponent(components, "name", std::make_unique<ProbeComponent>("1"));
    EXPECT_THAT(calls(), testing::ElementsAre("new 1", "insertIntoMap name"));
    EXPECT_NE(components.at("name"), nullptr);
}

TEST_F(ComponentMapsTest, deletesReplacedComponentOnce) {
    Gui::insertComponent(components, "name", std::make_unique<ProbeComponent>("old"));
    Gui::insertComponent(components, "name", std::make_unique<ProbeComponent>("new"));
    EXPECT_THAT(
        calls({"insertIntoMap", "delete"}),
        testing::ElementsAre("insertIntoMap name", "insertIntoMap name, replacing", "delete old"));
}

TEST_F(ComponentMapsTest, deletesComponentOnceWhenInsertionFails) {
    script.insertErrors["name"] = 7;
    EXPECT_EQ(thrownDetail([&] {
                  Gui::insertComponent(components, "name", std::make_unique<ProbeComponent>("1"));
              }),
              7);
    EXPECT_THAT(calls(), testing::ElementsAre("new 1", "insertIntoMap fails for name", "delete 1"));
    EXPECT_TRUE(components.empty());
}

TEST_F(ComponentMapsTest, deletesInNameOrderAndEmptiesMap) {
    Gui::insertComponent(components, "b", std::make_unique<ProbeComponent>("2"));
    Gui::insertComponent(components, "a", std::make_unique<ProbeComponent>("1"));
    Gui::deleteComponents(components);
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete 1", "delete 2"));
    EXPECT_TRUE(components.empty());
}

TEST_F(ComponentMapsTest, skipsNullComponents) {
    components["a"] = nullptr;
    Gui::insertComponent(components, "b", std::make_unique<ProbeComponent>("2"));
    Gui::deleteComponents(components);
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete 2"));
    EXPECT_TRUE(components.empty());
}

TEST_F(ComponentMapsTest, acceptsEmptyMap) {
    Gui::deleteComponents(components);
    EXPECT_THAT(calls(), testing::IsEmpty());
}

}  // namespace VeskLib::Test
