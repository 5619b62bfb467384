#include "platform/host/web/requestChecks.h"

#include "platform/host/base/cookies.h"

#include "platform/host/base/platformException.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/files.h"

#include <VeskLib/PException.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

namespace VeskLib::Test {

using Host::checkRequest;
using Host::RequestVerdict;

namespace {

using Value = std::optional<std::string>;

RequestVerdict check(const Value& method, const Value& site = {}, const Value& origin = {},
                     const Value& host = "localhost:8080") {
    const ScopedEnvironment methodVariable("REQUEST_METHOD", method);
    const ScopedEnvironment siteVariable("HTTP_SEC_FETCH_SITE", site);
    const ScopedEnvironment originVariable("HTTP_ORIGIN", origin);
    const ScopedEnvironment hostVariable("HTTP_HOST", host);
    return checkRequest();
}

// Checks a request that follows another site's link to a page with this query.
RequestVerdict follow(const char* method, const char* query, const Value& site = "cross-site") {
    const ScopedEnvironment queryVariable("QUERY_STRING", query);
    return check(method, site);
}

// Checks a request to a board with these properties. Runs in a child process, because a process
// reads them once.
RequestVerdict ask(const std::string& properties, const Value& host, const Value& origin = {}) {
    writeText(boardFile("/var/run/board_properties"), properties);
    const ChildResult result =
        runInChild([&] { return static_cast<int>(check("GET", {}, origin, host)); });
    EXPECT_EQ(result.signal, 0) << result.errors;
    return static_cast<RequestVerdict>(result.exitStatus);
}

bool isAcceptedPost(const Value& site, const Value& origin, const Value& host = "localhost:8080") {
    const RequestVerdict verdict = check("POST", site, origin, host);
    EXPECT_NE(verdict, RequestVerdict::METHOD_NOT_ALLOWED);
    return verdict == RequestVerdict::ACCEPTED;
}

}  // namespace

TEST(RequestChecksTest, acceptsOnlyThreeMethods) {
    for (const char* method : {"GET", "HEAD", "POST"}) {
        EXPECT_EQ(check(method), RequestVerdict::ACCEPTED) << method;
    }
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "TRACE", "PATCH", "CONNECT", "get",
                               "Post", "GET ", " GET", "GETS", "X", ""}) {
        EXPECT_EQ(check(method), RequestVerdict::METHOD_NOT_ALLOWED) << method;
    }
    EXPECT_EQ(check(std::nullopt), RequestVerdict::METHOD_NOT_ALLOWED);
}

TEST(RequestChecksTest, checksMethodFirst) {
    EXPECT_EQ(check("PUT", "cross-site"), RequestVerdict::METHOD_NOT_ALLOWED);
}

TEST(RequestChecksTest, acceptsReadFromAnySite) {
    for (const char* method : {"GET", "HEAD"}) {
        EXPECT_EQ(check(method, "cross-site", "http://evil"), RequestVerdict::ACCEPTED);
        for (const char* query : {"", "functionID=105", "functionID="}) {
            EXPECT_EQ(follow(method, query), RequestVerdict::ACCEPTED) << query;
        }
    }
}

TEST(RequestChecksTest, refusesWhatOtherSitesLoadIntoTheirPages) {
    struct Load {
        Value mode;
        Value destination;
        RequestVerdict verdict;
    };
    for (const Load& load : {Load{"navigate", "document", RequestVerdict::ACCEPTED},
                             Load{"navigate", {}, RequestVerdict::ACCEPTED},
                             Load{"navigate", "iframe", RequestVerdict::CROSS_SITE},
                             Load{"no-cors", "document", RequestVerdict::CROSS_SITE},
                             Load{"no-cors", "image", RequestVerdict::CROSS_SITE},
                             Load{"cors", {}, RequestVerdict::CROSS_SITE}}) {
        const ScopedEnvironment mode("HTTP_SEC_FETCH_MODE", load.mode);
        const ScopedEnvironment destination("HTTP_SEC_FETCH_DEST", load.destination);
        for (const char* site : {"cross-site", "same-site"}) {
            EXPECT_EQ(follow("GET", "", site), load.verdict);
            EXPECT_EQ(follow("GET", "functionID=105", site), load.verdict);
        }
        EXPECT_EQ(follow("GET", "", "same-origin"), RequestVerdict::ACCEPTED);
    }
}

TEST(RequestChecksTest, limitsCrossSiteLinkToFunction) {
    for (const char* method : {"GET", "HEAD"}) {
        for (const char* query :
             {"functionID=106&hidden_status=3", "hidden_status=3", "functionID=105x",
              "functionid=1", "functionID=105&functionID=106", "x", "functionID=5&filename=a.dat",
              "functionID=1%30", "functionID=1;x=2", "&functionID=105", "functionID"}) {
            for (const char* site : {"cross-site", "same-site", "anything"}) {
                EXPECT_EQ(follow(method, query, site), RequestVerdict::CROSS_SITE) << query;
            }
            for (const Value& site : {Value("same-origin"), Value("none"), Value()}) {
                EXPECT_EQ(follow(method, query, site), RequestVerdict::ACCEPTED) << query;
            }
        }
    }
}

TEST(RequestChecksTest, rejectsCrossSitePost) {
    EXPECT_TRUE(isAcceptedPost("same-origin", std::nullopt));
    EXPECT_TRUE(isAcceptedPost("none", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("cross-site", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("same-site", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("Same-Origin", std::nullopt));
    EXPECT_FALSE(isAcceptedPost("anything", std::nullopt));
}

TEST(RequestChecksTest, requiresOriginToMatchHost) {
    EXPECT_TRUE(isAcceptedPost({}, "http://localhost:8080"));
    EXPECT_FALSE(isAcceptedPost({}, "https://localhost:8080"));
    EXPECT_TRUE(isAcceptedPost({}, "http://localhost", "localhost"));
    EXPECT_TRUE(isAcceptedPost({}, "http://localhost", "localhost:80"));
    EXPECT_FALSE(isAcceptedPost({}, "http://localhost", "localhost:443"));
    EXPECT_TRUE(isAcceptedPost({}, "http://localhost:8080", "LocalHost:8080"));
    EXPECT_TRUE(isAcceptedPost({}, "http://[::1]:80", "[::1]:80"));
    for (const char* origin :
         {"http://evil", "http://localhost", "http://localhost:8081", "http://evil.localhost:8080",
          "http://localhost:8080.evil", "http://localhost:8080/", "http://user@localhost:8080",
          "null", "localhost:8080", "http:/localhost:8080", "http://127.0.0.1:8080", "://",
          "http://", " http://localhost:8080 "}) {
        EXPECT_FALSE(isAcceptedPost({}, origin)) << origin;
    }
}

TEST(RequestChecksTest, requiresHTTPSOriginOverTLS) {
    for (const char* on : {"", "off", "1", "On", "http"}) {
        const ScopedEnvironment variable("HTTPS", on);
        EXPECT_FALSE(Host::isSecureRequest()) << on;
    }
    const ScopedEnvironment unset("HTTPS", std::nullopt);
    EXPECT_FALSE(Host::isSecureRequest());
    const ScopedEnvironment variable("HTTPS", "on");
    EXPECT_TRUE(Host::isSecureRequest());
    EXPECT_TRUE(isAcceptedPost({}, "https://localhost:8080"));
    EXPECT_FALSE(isAcceptedPost({}, "http://localhost:8080"));
    EXPECT_TRUE(isAcceptedPost({}, "https://localhost", "localhost:443"));
    EXPECT_FALSE(isAcceptedPost({}, "https://localhost", "localhost:80"));
}

TEST(RequestChecksTest, rejectsPostIfEitherHeaderIsForeign) {
    EXPECT_TRUE(isAcceptedPost("same-origin", "http://localhost:8080"));
    EXPECT_FALSE(isAcceptedPost("same-origin", "http://evil"));
    EXPECT_FALSE(isAcceptedPost("cross-site", "http://localhost:8080"));
}

TEST(RequestChecksTest, acceptsPostWithoutEitherHeader) {
    EXPECT_TRUE(isAcceptedPost(std::nullopt, std::nullopt));
    EXPECT_TRUE(isAcceptedPost("", ""));
    EXPECT_TRUE(isAcceptedPost(std::nullopt, std::nullopt, std::nullopt));
}

TEST(RequestChecksTest, rejectsOriginWithoutHost) {
    EXPECT_FALSE(isAcceptedPost({}, "http://localhost:8080", std::nullopt));
    EXPECT_FALSE(isAcceptedPost({}, "http://", std::nullopt));
}

TEST(RequestChecksTest, recognizesPost) {
    const ScopedEnvironment post("REQUEST_METHOD", "POST");
    EXPECT_TRUE(Host::isPost());
    const ScopedEnvironment get("REQUEST_METHOD", "GET");
    EXPECT_FALSE(Host::isPost());
    const ScopedEnvironment unset("REQUEST_METHOD", std::nullopt);
    EXPECT_FALSE(Host::isPost());
}

class HostTest : public BoardTest {};

TEST_F(HostTest, acceptsLoopbackNames) {
    for (const char* host : {"127.0.0.1", "localhost", "[::1]", "127.0.0.1:8080", "LOCALHOST:1",
                             "[::1]:65535", "[0:0::1]:80"}) {
        EXPECT_EQ(ask("", host), RequestVerdict::ACCEPTED) << host;
    }
}

TEST_F(HostTest, acceptsOnlyConfiguredNames) {
    const std::string properties =
        "max_partitions=8\nhost=board.example\nhost=10.0.0.5\nhost=[fe80::1]\n";
    for (const char* host :
         {"board.example", "Board.Example:8080", "10.0.0.5:80", "[fe80::1]:443", "[FE80:0::1]"}) {
        EXPECT_EQ(ask(properties, host), RequestVerdict::ACCEPTED) << host;
        EXPECT_EQ(ask("max_partitions=8\n", host), RequestVerdict::MISDIRECTED) << host;
    }
    for (const char* host : {"evil",
                             "evil.board.example",
                             "board.example.evil",
                             "board.example.",
                             "board.exampl",
                             "board.example:",
                             "board.example:x",
                             "board.example:99999",
                             "board.example:-1",
                             "board.example:80:80",
                             "board.example/",
                             " board.example",
                             "boardxexample",
                             "10.0.0.50",
                             "[fe80::1",
                             "fe80::1",
                             "[]",
                             "[::1]x",
                             ":80",
                             "board.example\n",
                             "a..b"}) {
        EXPECT_EQ(ask(properties, host), RequestVerdict::MISDIRECTED) << host;
    }
    EXPECT_EQ(ask(properties, std::string(300, 'a')), RequestVerdict::MISDIRECTED);
}

TEST_F(HostTest, requiresHostOfBrowsers) {
    EXPECT_EQ(ask("", std::nullopt), RequestVerdict::ACCEPTED);
    EXPECT_EQ(ask("", ""), RequestVerdict::ACCEPTED);
    EXPECT_EQ(ask("", std::nullopt, "http://evil"), RequestVerdict::MISDIRECTED);
    EXPECT_EQ(check("GET", "cross-site", {}, std::nullopt), RequestVerdict::MISDIRECTED);
}

TEST_F(HostTest, failsIfNamesCannotBeRead) {
    ASSERT_EQ(::mkdir(boardFile("/var/run/board_properties").c_str(), 0700), 0);
    const ChildResult result = runInChild([] {
        try {
            return static_cast<int>(check("GET", {}, {}, "board.example"));
        } catch (const PException& exception) {
            return exception.getExceptionDetail() == Host::FILE_NOT_READABLE ? 100 : 101;
        }
    });
    EXPECT_EQ(result.exitStatus, 100) << result.errors;
}

}  // namespace VeskLib::Test
