#include <VeskLib/Gui/HTMLPage.h>

#include "tests/contract/ProbeComponent.h"
#include "tests/contract/platformSpecifics.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

#include <memory>
#include <utility>

namespace VeskLib::Test {

using Gui::HTMLPage;
using testing::HasSubstr;
using testing::Not;

namespace {

const char* const PLACES[] = {"body", "css", "java_script", "meta_frameid", "title"};

}  // namespace

class HTMLPageContractTest : public testing::Test {
protected:
    // Inserts the five components that the dispatcher puts into the shell.
    void fill(HTMLPage& page) {
        for (const char* name : PLACES) {
            page.componentMap[name] =
                std::make_unique<ProbeComponent>(std::string("OF_") + name, counts[name]).release();
        }
    }

    std::map<std::string, ProbeCounts> counts;
};

TEST_F(HTMLPageContractTest, isConstructedEmptyWithGenerator) {
    const HTMLPage page(1);
    EXPECT_TRUE(page.componentMap.empty());
    EXPECT_NE(page.generator, nullptr);
}

TEST_F(HTMLPageContractTest, emptyPageIsACompleteDocument) {
    const HTMLPage page(1);
    const std::string printed = printedHTML(*page.generator);
    EXPECT_THAT(tagNamesOf(printed), testing::IsSupersetOf({"html", "head", "body", "/html"}));
    for (const char* name : PLACES) {
        EXPECT_THAT(printed, Not(HasSubstr(skeletonMark(name))));
    }
}

TEST_F(HTMLPageContractTest, printsEveryComponentOnce) {
    HTMLPage page(1);
    fill(page);
    const std::string printed = printedHTML(*page.generator);
    for (const auto& [name, count] : counts) {
        SCOPED_TRACE(name);
        EXPECT_EQ(count.printed, 1);
        EXPECT_EQ(count.deleted, 0);
        EXPECT_THAT(printed, HasSubstr("OF_" + name));
    }
}

TEST_F(HTMLPageContractTest, printsEveryComponentInItsPlace) {
    HTMLPage page(1);
    fill(page);
    const std::string printed = printedHTML(*page.generator);
    const std::size_t headEnd = printed.find("</head>");
    ASSERT_NE(headEnd, std::string::npos);
    EXPECT_LT(printed.find("OF_meta_frameid"), headEnd);
    EXPECT_GT(printed.find("OF_title"), printed.find("<title"));
    EXPECT_LT(printed.find("OF_title"), printed.find("</title>"));
    EXPECT_GT(printed.find("OF_body"), printed.find("<body"));
    EXPECT_LT(printed.find("OF_body"), printed.find("</body>"));
    std::vector<std::string> sheets;
    for (const Tag& link : tagsOf(printed, "link")) {
        if (link.attributes.contains("rel") && link.attributes.at("rel") == "stylesheet") {
            sheets.push_back(link.attributes.at("href"));
        }
    }
    EXPECT_THAT(sheets, testing::Contains("OF_css"));
}

TEST_F(HTMLPageContractTest, deletesItsComponentsOnce) {
    {
        HTMLPage page(1);
        fill(page);
    }
    for (const auto& [name, count] : counts) {
        EXPECT_EQ(count.deleted, 1) << name;
    }
}

}  // namespace VeskLib::Test
