#include "platform/host/text/Catalogue.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <filesystem>

// Tests of check_texts, which checks catalogues and skeletons while the board is built.

namespace VeskLib::Test {

using testing::HasSubstr;

class CheckTextsTest : public BoardTest {
protected:
    CheckTextsTest()
        : root(boardFile("/var/tmp/root")), skeleton(boardFile("/var/tmp/skeleton.txt")) {
        std::filesystem::create_directories(root + "/usr/local/share/catalogue");
        for (const auto& [tag, name] : Host::languages()) {
            makeCatalogue(tag, readSource(tag));
        }
    }

    static std::string readSource(const std::string& language) {
        return readText(std::string(CATALOGUE_SOURCES) + "/messages_" + language + ".msg");
    }

    void makeCatalogue(const std::string& language, const std::string& text) const {
        const std::string source = boardFile("/var/tmp/" + language + ".msg");
        const std::string catalogue =
            root + "/usr/local/share/catalogue/messages_" + language + ".cat";
        std::filesystem::remove(catalogue);
        writeText(source, text);
        const ChildResult result = runProgram({GENCAT, catalogue, source});
        ASSERT_EQ(result.exitStatus, 0) << result.errors;
    }

    // Rebuilds the Japanese catalogue with a line added to a set.
    void addToJapanese(const std::string& set, const std::string& line) const {
        std::string text = readSource("ja");
        const std::string start = "$set " + set + "\n";
        text.insert(text.find(start) + start.size(), line + "\n");
        makeCatalogue("ja", text);
    }

    ChildResult check(const std::vector<std::string>& skeletons) const {
        std::vector<std::string> command = {CHECK_TEXTS};
        command.insert(command.end(), skeletons.begin(), skeletons.end());
        return runProgram(command, {.environment = {{"BOARD_ROOT", root}}, .input = {}});
    }

    void expectProblem(const ChildResult& result, const std::string& problem) const {
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors, HasSubstr(problem));
    }

    std::string root;
    std::string skeleton;
};

TEST_F(CheckTextsTest, acceptsTextsOfBoard) {
    std::vector<std::string> skeletons;
    for (const char* folder : {PROGRAM_SKELETONS, PLATFORM_SKELETONS, WEB_SKELETONS}) {
        const std::vector<std::string> paths = pathsIn(folder);
        skeletons.insert(skeletons.end(), paths.begin(), paths.end());
    }
    const ChildResult result = check(skeletons);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(skeletons.empty());
}

TEST_F(CheckTextsTest, reportsLineAndColumnOfMalformedMark) {
    writeText(skeleton, "<p>\n  {{no mark}}\n");
    expectProblem(check({skeleton}), skeleton + ":2:3: not a mark");
}

TEST_F(CheckTextsTest, reportsMissingCaption) {
    writeText(skeleton, "{{text 9001}}{{text 9999|script}}");
    expectProblem(check({skeleton}), "there is no text 9999");
}

TEST_F(CheckTextsTest, checksEverySkeleton) {
    writeText(skeleton, "{{text 9001}}");
    expectProblem(check({boardFile("/var/tmp/missing.txt"), skeleton}), "missing.txt");
    expectProblem(check({skeleton, boardFile("/var/tmp/missing.txt")}), "cannot be read");
}

TEST_F(CheckTextsTest, reportsTextMissingInOneLanguage) {
    addToJapanese("1", "500 \"extra\"");
    expectProblem(check({}), "Text 500 of set 1 is not in every language");
    addToJapanese("2", "9999 \"extra\"");
    expectProblem(check({}), "Text 9999 of set 2 is not in every language");
}

TEST_F(CheckTextsTest, reportsDifferingPlaceholders) {
    const std::string english = R"(1 "%s of %d"
2 "100%% of %s"
3 "#1 of #2"
4 "#1 of #2"
)";
    const std::string other = R"(1 "%d of %s"
2 "%s"
3 "#2: #1"
4 "#1 of #1"
)";
    for (const auto& [tag, name] : Host::languages()) {
        const std::string& texts = std::string(tag) == "en" ? english : other;
        makeCatalogue(tag, "$quote \"\n$set 1\n" + texts);
    }
    EXPECT_EQ(check({}).errors,
              "Text 1 of set 1 has other placeholders in ja.\n"
              "Text 4 of set 1 has other placeholders in ja.\n");
}

TEST_F(CheckTextsTest, reportsMissingTagNameOrText) {
    for (const auto& [tag, name] : Host::languages()) {
        const std::string whole = readSource(tag);
        for (const std::string number : {"9005", "9006", "303"}) {
            const std::size_t start = whole.find("\n" + number + " \"") + 1;
            ASSERT_NE(start, 0U) << tag << number;
            std::string text = whole;
            text.erase(start, text.find('\n', start) + 1 - start);
            makeCatalogue(tag, text);
            expectProblem(check({}), "Text " + number + " of set ");
        }
        makeCatalogue(tag, whole);
    }
    EXPECT_EQ(check({}).errors, "");
}

TEST_F(CheckTextsTest, failsWithoutCatalogues) {
    std::filesystem::remove_all(root + "/usr/local/share/catalogue");
    expectProblem(check({}), "are the catalogues in place?");
}

}  // namespace VeskLib::Test
