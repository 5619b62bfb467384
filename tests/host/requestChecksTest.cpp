#include "platform/host/web/requestChecks.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::checkRequest;
using Host::RequestVerdict;

namespace {

using Value = std::optional<std::string>;

RequestVerdict check(const Value& method, const Value& site = {}, const Value& origin = {},
                     const Value& host = "board:8080") {
    const ScopedEnvironment methodVariable("REQUEST_METHOD", method);
    const ScopedEnvironment siteVariable("HTTP_SEC_FETCH_SITE", site);
    const ScopedEnvironment originVariable("HTTP_ORIGIN", origin);
    const ScopedEnvironment hostVariable("HTTP_HOST", host);
    return checkRequest();
}

bool isAcceptedPost(const Value& site, const Value& origin, const Value& host = "board:8080") {
    const RequestVerdict verdict = check("POST", site, origin, host);
    EXPECT_NE(verdict, RequestVerdict::METHOD_NOT_ALLOWED);
    return verdict == RequestVerdict::ACCEPTED;
}

}  // namespace

TEST(RequestChecksTest, threeMethodsAreKnown) {
    for (const char* method : {"GET", "HEAD", "POST"}) {
        EXPECT_EQ(check(method), RequestVerdict::ACCEPTED) << method;
    }
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "TRACE", "PATCH", "CONNECT", "get",
                               "Post", "GET ", " GET", "GETS", "X", ""}) {
        EXPECT_EQ(check(method), RequestVerdict::METHOD_NOT_ALLOWED) << method;
    }
    EXPECT_EQ(check(std::nullopt), RequestVerdict::METHOD_NOT_ALLOWED);
}

TEST(RequestChecksTest, anUnknownMethodIsRefusedFirst) {
    EXPECT_EQ(check("PUT", "cross-site"), RequestVerdict::METHOD_NOT_ALLOWED);
}

TEST(RequestChecksTest, aReadingRequestMayComeFromAnywhere) {
    for (const char* method : {"GET", "HEAD"}) {
        EXPECT_EQ(check(method, "cross-site", "http://evil"), RequestVerdict::ACCEPTED);
    }
}

TEST(RequestChecksTest, aPostMustNotComeFromAnotherSite) {
    EXPECT_TRUE(isAcceptedPost("same-origin", std::nullopt));
    EXPECT_TRUE(isAcceptedPost("none", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("cross-site", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("same-site", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("Same-Origin", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("anything", std::nullopt));
}

TEST(RequestChecksTest, thePostsOriginMustBeTheHost) {
    EXPECT_TRUE(isAcceptedPost({}, "http://board:8080"));
    EXPECT_TRUE(isAcceptedPost({}, "https://board:8080"));
    EXPECT_TRUE(isAcceptedPost({}, "http://[::1]:80", "[::1]:80"));
    for (const char* origin :
         {"http://evil", "http://board", "http://board:8081", "http://evil.board:8080",
          "http://board:8080.evil", "http://board:8080/", "http://user@board:8080", "null",
          "board:8080", "http:/board:8080", "://", "http://", " http://board:8080 "}) {
        EXPECT_FALSE(isAcceptedPost({}, origin)) << origin;
    }
}

TEST(RequestChecksTest, bothHeadersMustAgree) {
    EXPECT_TRUE(isAcceptedPost("same-origin", "http://board:8080"));
    EXPECT_FALSE(isAcceptedPost("same-origin", "http://evil"));
    EXPECT_FALSE(isAcceptedPost("cross-site", "http://board:8080"));
}

TEST(RequestChecksTest, aClientThatIsNoBrowserSendsNeither) {
    EXPECT_TRUE(isAcceptedPost(std::nullopt, std::nullopt));
    EXPECT_TRUE(isAcceptedPost("", ""));
    EXPECT_TRUE(isAcceptedPost(std::nullopt, std::nullopt, std::nullopt));
}

TEST(RequestChecksTest, anOriginWithoutAHostToCompareIsRefused) {
    EXPECT_FALSE(isAcceptedPost({}, "http://board:8080", std::nullopt));
    EXPECT_FALSE(isAcceptedPost({}, "http://", std::nullopt));
}

TEST(RequestChecksTest, onlyAPostIsAPost) {
    const ScopedEnvironment post("REQUEST_METHOD", "POST");
    EXPECT_TRUE(Host::isPost());
    const ScopedEnvironment get("REQUEST_METHOD", "GET");
    EXPECT_FALSE(Host::isPost());
    const ScopedEnvironment unset("REQUEST_METHOD", std::nullopt);
    EXPECT_FALSE(Host::isPost());
}

}  // namespace VeskLib::Test
