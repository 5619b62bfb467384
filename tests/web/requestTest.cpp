// Tests of the checks that every web program makes before it handles a request.

#include "tests/web/FakeBackend.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

namespace {

struct ProgramCase {
    const char* name;
    const char* program;
    const char* allowed;
};

std::ostream& operator<<(std::ostream& stream, const ProgramCase& testCase) {
    return stream << testCase.name;
}

class EveryProgramTest : public WebTest, public testing::WithParamInterface<ProgramCase> {};

INSTANTIATE_TEST_SUITE_P(Programs, EveryProgramTest,
                         testing::Values(ProgramCase{"login", LOGIN_PROGRAM, "GET, HEAD, POST"},
                                         ProgramCase{"logout", LOGOUT_PROGRAM, "POST"},
                                         ProgramCase{"menu", MENU_PROGRAM, "GET, HEAD, POST"},
                                         ProgramCase{"download", DOWNLOAD_PROGRAM, "GET, HEAD"}));

TEST_P(EveryProgramTest, otherMethodsAreNotAllowed) {
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "get", "", "GET,", "HEAD, POST"}) {
        const CGIResponse response = runWebProgram(GetParam().program, {.method = method});
        expectPage(response, "405 Method Not Allowed", caption(9010));
        EXPECT_EQ(response.header("Allow"), GetParam().allowed) << method;
    }
}

TEST_P(EveryProgramTest, foreignHostNameIsMisdirected) {
    for (const char* method : {"GET", "POST"}) {
        if (std::string(GetParam().allowed).find(method) != std::string::npos) {
            const CGIResponse response = runWebProgram(
                GetParam().program, {.method = method, .more = {{"HTTP_HOST", "evil.example"}}});
            expectPage(response, "421 Misdirected Request", caption(9029));
            EXPECT_EQ(response.body.find("href=\"/\""), std::string::npos) << response.body;
        }
    }
}

class PostTest : public WebTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Programs, PostTest,
                         testing::Values(LOGIN_PROGRAM, LOGOUT_PROGRAM, MENU_PROGRAM));

TEST_P(PostTest, postFromAnotherSiteIsRefused) {
    const std::vector<Environment> foreign = {
        {{"HTTP_SEC_FETCH_SITE", "cross-site"}},
        {{"HTTP_SEC_FETCH_SITE", "same-site"}},
        {{"HTTP_ORIGIN", "http://other.example"}},
        {{"HTTP_ORIGIN", "http://127.0.0.1:8081"}},
        {{"HTTP_ORIGIN", "null"}},
    };
    for (const Environment& headers : foreign) {
        FakeBackend backend(std::nullopt);
        const CGIResponse response = runWebProgram(
            GetParam(),
            {.method = "POST", .form = "user=admin&password=admin&language=ja", .more = headers});
        expectPage(response, "403 Forbidden", caption(9025));
        EXPECT_FALSE(backend.takeRequest());
    }
}

TEST_P(PostTest, postFromOwnSiteIsAccepted) {
    const CGIResponse response =
        runWebProgram(GetParam(), {.method = "POST",
                                   .form = "user=admin&password=admin&language=ja",
                                   .more = {{"HTTP_SEC_FETCH_SITE", "same-origin"},
                                            {"HTTP_ORIGIN", "http://127.0.0.1:8080"}}});
    EXPECT_NE(response.status, "403 Forbidden");
}

class FormTest : public WebTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Programs, FormTest, testing::Values(LOGIN_PROGRAM, MENU_PROGRAM));

TEST_P(FormTest, oversizedFormIsRefused) {
    const CGIResponse response = runWebProgram(
        GetParam(), {.method = "POST", .form = "language=ja&user=" + std::string(100000, 'a')});
    expectPage(response, "413 Content Too Large", "1108");
}

TEST_P(FormTest, truncatedBodyIsRefused) {
    const CGIResponse response = runWebProgram(
        GetParam(),
        {.method = "POST", .form = "language=ja&user=admin", .more = {{"CONTENT_LENGTH", "1000"}}});
    expectPage(response, "400 Bad Request", "1107");
}

}  // namespace

}  // namespace VeskLib::Test
