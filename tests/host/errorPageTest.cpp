#include "platform/host/web/errorPage.h"

#include "tests/support/BoardTest.h"
#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <iostream>
#include <new>
#include <utility>

namespace VeskLib::Test {

using Host::ErrorPage;
using Host::printErrorPage;
using Host::Response;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

using Work = std::function<void(Response&)>;

// Returns the response of `work`, run in a child process after half a page was printed. Expects the
// response to contain nothing of that page.
CGIResponse respondInstead(const Work& work, const std::string& language = "en") {
    const ChildResult result = runInChild(
        [&work] {
            Response response;
            std::cout << "half a page";
            response.addHeader("Location", "/");
            work(response);
            return response.send() ? 0 : 1;
        },
        {.environment = {{"REQUEST_METHOD", "GET"}, {"HTTP_ACCEPT_LANGUAGE", language}},
         .input = {}});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    CGIResponse response = parseResponse(result.output);
    EXPECT_THAT(response.body, Not(HasSubstr("half a page")));
    EXPECT_EQ(response.header("Location"), "");
    return response;
}

CGIResponse show(const ErrorPage& page) {
    return respondInstead([&page](Response& response) { printErrorPage(page, response); });
}

CGIResponse showMade(const std::function<ErrorPage()>& make, const std::string& language) {
    return respondInstead([&make](Response& response) { printErrorPage(make(), response); },
                          language);
}

CGIResponse showException(int messageNumber, long argument) {
    return respondInstead([=](Response& response) {
        Host::printExceptionPage(
            PException(1, 2, 3, 4, 4711, messageNumber, argument, 0, 0, 0, 0, 0, 0, 0), response);
    });
}

}  // namespace

class ErrorPageTest : public BoardTest {
public:
    ~ErrorPageTest() override {
        if (exists(aside)) {
            std::filesystem::rename(aside, skeleton);
        }
    }

protected:
    ErrorPageTest()
        : skeleton(boardFile("/usr/local/www/skel/skeleton_error.txt")), aside(skeleton + "~") {}

    void takeSkeletonAway() const { std::filesystem::rename(skeleton, aside); }

    static std::vector<std::string> traceLines() {
        return linesOf(readText(boardFile("/var/log/trace.log")));
    }

    std::string skeleton;
    std::string aside;
};

TEST_F(ErrorPageTest, showsTitleAndLines) {
    const CGIResponse response =
        show({.status = 404, .title = "A & B", .message = "one<br>two <b>"});
    EXPECT_EQ(response.status, "404 Not Found");
    EXPECT_THAT(response.body, HasSubstr("<h1>A &amp; B</h1>"));
    EXPECT_THAT(response.body, HasSubstr("<title>A &amp; B"));
    EXPECT_THAT(response.body, HasSubstr("<p>one</p><p>two &lt;b&gt;</p>"));
}

TEST_F(ErrorPageTest, linksToMenuOrLogin) {
    const std::string toMenu = show({.title = "t", .message = "m"}).body;
    EXPECT_THAT(toMenu, HasSubstr("href=\"/\""));
    EXPECT_THAT(toMenu, Not(HasSubstr("href=\"/login.cgi\"")));
    const std::string toLogin = show({.title = "t", .message = "m", .offerLogin = true}).body;
    EXPECT_THAT(toLogin, HasSubstr("href=\"/login.cgi\""));
    EXPECT_THAT(toLogin, Not(HasSubstr("href=\"/\"")));
}

TEST_F(ErrorPageTest, printsPlainPageWithoutSkeleton) {
    takeSkeletonAway();
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const CGIResponse response = show({.status = 403, .title = text, .message = text});
        EXPECT_EQ(response.status, "403 Forbidden");
        EXPECT_THAT(tagNamesOf(response.body),
                    ElementsAre("!doctype", "html", "head", "title", "/title", "/head", "body",
                                "h1", "/h1", "p", "/p", "/body", "/html"));
        EXPECT_THAT(textOf(response.body), HasSubstr(text));
    }
    EXPECT_THAT(traceLines().at(0), HasSubstr("skeleton_error.txt"));
}

TEST_F(ErrorPageTest, printsPlainPageForMalformedSkeleton) {
    takeSkeletonAway();
    writeText(skeleton, "BEGINNING {{title}} {{malformed mark}}");
    const CGIResponse response = show({.title = "Title", .message = "message"});
    EXPECT_THAT(response.body, Not(HasSubstr("BEGINNING")));
    EXPECT_THAT(response.body, HasSubstr("<h1>Title</h1><p>message</p>"));
}

TEST_F(ErrorPageTest, usesLastResortIfPrintingFails) {
    class FullBuffer : public std::streambuf {
    protected:
        int_type overflow(int_type /*character*/) override { throw std::bad_alloc(); }
    };
    static_assert(noexcept(printErrorPage(ErrorPage(), std::declval<Response&>())));
    const CGIResponse response = respondInstead([](Response& target) {
        FullBuffer full;
        std::streambuf* const usual = std::cout.rdbuf(&full);
        printErrorPage({.status = 403, .title = "t", .message = "m"}, target);
        std::cout.rdbuf(usual);
    });
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(textOf(response.body), HasSubstr("no memory left"));
}

TEST_F(ErrorPageTest, printsEveryPageInBothLanguages) {
    const std::vector<std::pair<std::function<ErrorPage()>, std::string>> pages = {
        {Host::makeMethodPage, "405 Method Not Allowed"},
        {Host::makeMisdirectedPage, "421 Misdirected Request"},
        {Host::makeCrossSitePage, "403 Forbidden"},
        {Host::makeLoginPage, "403 Forbidden"},
        {Host::makeInternalErrorPage, "500 Internal Server Error"},
    };
    for (const auto& [make, status] : pages) {
        const CGIResponse english = showMade(make, "en");
        const CGIResponse japanese = showMade(make, "ja");
        EXPECT_EQ(english.status, status);
        EXPECT_EQ(japanese.status, status);
        EXPECT_THAT(english.body, HasSubstr("<html lang=\"en\">"));
        EXPECT_THAT(japanese.body, HasSubstr("<html lang=\"ja\">"));
        EXPECT_NE(textOf(english.body), textOf(japanese.body));
        EXPECT_THAT(textOf(english.body), Not(HasSubstr("missing")));
    }
}

TEST_F(ErrorPageTest, tracesExceptionWithArguments) {
    static const char TEXT[] = "PrimitiveTypeArray";
    const CGIResponse response = showException(20019, reinterpret_cast<long>(TEXT));
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(textOf(response.body), HasSubstr("[9020-4711]"));
    EXPECT_THAT(textOf(response.body), Not(HasSubstr(TEXT)));
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr("PrimitiveTypeArray [4711]")));
}

TEST_F(ErrorPageTest, tracesNumberOfUnknownMessage) {
    EXPECT_EQ(showException(31999, 0).status, "500 Internal Server Error");
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr("31999")));
}

TEST_F(ErrorPageTest, survivesExceptionWithoutText) {
    EXPECT_EQ(showException(20019, 0).status, "500 Internal Server Error");
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr("[4711]")));
}

}  // namespace VeskLib::Test
