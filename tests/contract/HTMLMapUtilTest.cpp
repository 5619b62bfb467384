#include <VeskLib/Gui/HTMLMapUtil.h>

#include "tests/contract/ProbeComponent.h"

#include <gtest/gtest.h>

#include <memory>

namespace VeskLib::Test {

using Gui::HTMLMapUtil;

class HTMLMapUtilTest : public testing::Test {
public:
    ~HTMLMapUtilTest() override {
        for (const auto& entry : components) {
            const std::unique_ptr<Gui::HTMLComponent> owned(entry.second);
        }
    }

protected:
    // Inserts a new component; the map takes ownership.
    Gui::HTMLComponent* insert(const std::string& name, ProbeCounts& counts) {
        auto component = std::make_unique<ProbeComponent>(name, counts);
        HTMLMapUtil::insertIntoMap(components, name, component.get());
        return component.release();
    }

    std::map<std::string, Gui::HTMLComponent*> components;
    ProbeCounts first;
    ProbeCounts second;
};

TEST_F(HTMLMapUtilTest, insertsComponentUnderItsName) {
    Gui::HTMLComponent* body = insert("body", first);
    Gui::HTMLComponent* title = insert("title", second);
    EXPECT_EQ(components.size(), 2u);
    EXPECT_EQ(components.at("body"), body);
    EXPECT_EQ(components.at("title"), title);
    EXPECT_EQ(first.deleted + second.deleted, 0);
}

TEST_F(HTMLMapUtilTest, deletesReplacedComponentOnce) {
    insert("onload_function", first);
    Gui::HTMLComponent* last = insert("onload_function", second);
    EXPECT_EQ(components.size(), 1u);
    EXPECT_EQ(components.at("onload_function"), last);
    EXPECT_EQ(first.deleted, 1);
    EXPECT_EQ(second.deleted, 0);
}

TEST_F(HTMLMapUtilTest, doesNotDeleteReinsertedComponent) {
    Gui::HTMLComponent* component = insert("body", first);
    HTMLMapUtil::insertIntoMap(components, "body", component);
    EXPECT_EQ(components.at("body"), component);
    EXPECT_EQ(first.deleted, 0);
}

TEST_F(HTMLMapUtilTest, replacesNullEntry) {
    components["body"] = nullptr;
    Gui::HTMLComponent* component = insert("body", first);
    EXPECT_EQ(components.at("body"), component);
}

TEST_F(HTMLMapUtilTest, comparesNamesExactly) {
    insert("body", first);
    insert("Body", second);
    insert("", second);
    EXPECT_EQ(components.size(), 3u);
    EXPECT_EQ(first.deleted + second.deleted, 0);
}

}  // namespace VeskLib::Test
