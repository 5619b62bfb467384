#include "platform/host/text/Catalogue.h"

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

namespace {

// Runs in a child process, because a process determines its language once.
std::string languageOf(const Environment& environment) {
    const ChildResult result = runInChild([] { return Host::requestLanguage(); },
                                          {.environment = environment, .input = {}});
    EXPECT_EQ(result.signal, 0) << result.errors;
    return Host::languageTag(result.exitStatus);
}

std::string acceptedLanguage(const std::string& header) {
    return languageOf({{"HTTP_ACCEPT_LANGUAGE", header}});
}

}  // namespace

TEST(RequestLanguageTest, defaultsToEnglish) {
    EXPECT_EQ(languageOf({}), "en");
    EXPECT_EQ(acceptedLanguage(""), "en");
}

TEST(RequestLanguageTest, picksFirstAvailableLanguage) {
    const std::map<std::string, std::string> table = {
        {"ja", "ja"},
        {"en", "en"},
        {"ja-JP", "ja"},
        {"en-GB", "en"},
        {"ja,en-US;q=0.9,en;q=0.8", "ja"},
        {"en-US,en;q=0.9,ja;q=0.8", "en"},
        {"xx-XX, ja;q=0.7, en;q=0.3", "ja"},
        {"xx,yy", "en"},
        {"*", "en"},
        {"jav", "en"},
        {"j", "en"},
        {"enx,ja", "ja"},
        {" ja", "ja"},
        {"  ja ;q=0.5", "ja"},
        {"xx;q=0.9 , ja ; q=0.5", "ja"},
        {",,;;,ja", "ja"},
        {";", "en"},
        {"-", "en"},
        {"ja-", "ja"},
        {"\xFF\xFE,ja", "ja"},
    };
    for (const auto& [header, language] : table) {
        EXPECT_EQ(acceptedLanguage(header), language) << header;
    }
}

TEST(RequestLanguageTest, picksEachLanguageOfTheBoard) {
    for (const auto& [tag, name] : Host::languages()) {
        EXPECT_EQ(acceptedLanguage(tag), tag);
        EXPECT_EQ(languageOf({{"HTTP_COOKIE", std::string("language=") + tag}}), tag);
    }
}

TEST(RequestLanguageTest, readsLongHeaderToEnd) {
    std::string header;
    for (int i = 0; i < 10000; ++i) {
        header += "xx,";
    }
    EXPECT_EQ(acceptedLanguage(header + "ja"), "ja");
}

TEST(RequestLanguageTest, prefersOperatorChoiceOverBrowser) {
    EXPECT_EQ(languageOf({{"HTTP_COOKIE", "language=ja"}, {"HTTP_ACCEPT_LANGUAGE", "en"}}), "ja");
    EXPECT_EQ(languageOf({{"HTTP_COOKIE", "a=b; language=en"}, {"HTTP_ACCEPT_LANGUAGE", "ja"}}),
              "en");
}

TEST(RequestLanguageTest, ignoresUnknownLanguage) {
    for (const char* choice : {"xx", "", "jaa", "../../x", "1", "%s"}) {
        SCOPED_TRACE(choice);
        const std::string cookie = std::string("language=") + choice;
        EXPECT_EQ(languageOf({{"HTTP_COOKIE", cookie}, {"HTTP_ACCEPT_LANGUAGE", "ja"}}), "ja");
        EXPECT_EQ(languageOf({{"HTTP_COOKIE", cookie}}), "en");
    }
}

TEST(RequestLanguageTest, tagsUnknownNumberAsEnglish) {
    EXPECT_STREQ(Host::languageTag(Host::ENGLISH), "en");
    EXPECT_STREQ(Host::languageTag(1), "ja");
    EXPECT_STREQ(Host::languageTag(-1), "en");
    EXPECT_STREQ(Host::languageTag(static_cast<int>(Host::languages().size())), "en");
}

}  // namespace VeskLib::Test
