#include "platform/host/web/Response.h"

#include "platform/host/base/scriptNonce.h"
#include "tests/support/BoardTest.h"
#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/interruptOften.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <iostream>
#include <new>

namespace VeskLib::Test {

using Host::Response;
using testing::HasSubstr;

namespace {

using Work = std::function<void(Response&)>;

const ChildSetup GET = {.environment = {{"REQUEST_METHOD", "GET"}}, .input = {}};
const ChildSetup HEAD = {.environment = {{"REQUEST_METHOD", "HEAD"}}, .input = {}};
const int NOT_SENT = 9;
const int NOT_PREPARED = 8;

// Sends a response in a child process, which exits with 0 if send() succeeds, with NOT_SENT if it
// fails, and with NOT_PREPARED if `prepare` fails.
ChildResult respond(
    const Work& work, const ChildSetup& setup = GET,
    const std::function<bool()>& prepare = [] { return true; }) {
    return runInChild(
        [&] {
            if (!prepare()) {
                return NOT_PREPARED;
            }
            Response response;
            work(response);
            return response.send() ? 0 : NOT_SENT;
        },
        setup);
}

CGIResponse responseOf(const Work& work) {
    const ChildResult result = respond(work);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return parseResponse(result.output);
}

bool replaceOutput(int descriptor) {
    return descriptor >= 0 && ::dup2(descriptor, STDOUT_FILENO) == STDOUT_FILENO &&
           ::close(descriptor) == 0;
}

}  // namespace

class ResponseTest : public BoardTest {};

TEST_F(ResponseTest, lastResortReplacesPrintedPage) {
    const CGIResponse response = responseOf([](Response& own) {
        own.setStatus(200);
        own.addHeader("Set-Cookie", "secret");
        std::cout << "half a page";
        own.useLastResort();
        std::cout << "and more";
    });
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_EQ(response.header("Set-Cookie"), "");
    EXPECT_EQ(response.header("Cache-Control"), "no-store");
    EXPECT_EQ(response.header("X-Content-Type-Options"), "nosniff");
    EXPECT_TRUE(response.body.starts_with("<!DOCTYPE html>")) << response.body;
    EXPECT_TRUE(response.body.ends_with("</html>\n")) << response.body;
    EXPECT_THAT(response.body, testing::Not(HasSubstr("half a page")));
}

TEST_F(ResponseTest, lastResortHasNoBodyForHead) {
    const ChildResult result = respond([](Response& own) { own.useLastResort(); }, HEAD);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_TRUE(result.output.ends_with("\r\n\r\n")) << result.output;
}

TEST_F(ResponseTest, throwsIfPrintingFails) {
    const ChildResult result = respond([](Response&) {
        class Broken : public std::streambuf {
        protected:
            std::streamsize xsputn(const char*, std::streamsize) override {
                throw std::bad_alloc();
            }
        };
        Broken broken;
        std::streambuf* const page = std::cout.rdbuf(&broken);
        bool thrown = false;
        try {
            std::cout << "text";
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        std::cout.rdbuf(page);
        std::cout << (thrown ? "thrown" : "lost");
    });
    EXPECT_TRUE(result.output.ends_with("thrown")) << result.output;
}

TEST_F(ResponseTest, sendsPrintedTextAsBody) {
    const CGIResponse response = responseOf([](Response&) { std::cout << "<p>" << 42 << "</p>"; });
    EXPECT_EQ(response.status, "200 OK");
    EXPECT_EQ(response.header("Content-Type"), "text/html; charset=UTF-8");
    EXPECT_EQ(response.body, "<p>42</p>");
}

TEST_F(ResponseTest, sendsZeroLengthForEmptyBody) {
    EXPECT_EQ(responseOf([](Response&) {}).header("Content-Length"), "0");
}

TEST_F(ResponseTest, keepsEveryByteOfBody) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    EXPECT_EQ(responseOf([&bytes](Response&) { std::cout << bytes; }).body, bytes);
}

TEST_F(ResponseTest, sendsSecurityHeaders) {
    const CGIResponse response = responseOf([](Response&) {});
    EXPECT_EQ(response.header("Cache-Control"), "no-store");
    EXPECT_EQ(response.header("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(response.header("Referrer-Policy"), "same-origin");
    const std::string policy = response.header("Content-Security-Policy");
    for (const char* directive : {"default-src 'none'", "frame-ancestors 'none'",
                                  "form-action 'self'", "base-uri 'none'", "style-src 'self'"}) {
        EXPECT_THAT(policy, HasSubstr(directive));
    }
    EXPECT_TRUE(policy.ends_with("script-src 'self'")) << policy;
}

TEST_F(ResponseTest, limitsScriptsToSelfAndNonce) {
    const CGIResponse response = responseOf([](Response&) { std::cout << Host::scriptNonce(); });
    EXPECT_EQ(response.body.size(), 32U);
    const std::string policy = response.header("Content-Security-Policy");
    EXPECT_TRUE(policy.ends_with("script-src 'self' 'nonce-" + response.body + "'")) << policy;
    const CGIResponse other = responseOf([](Response&) { std::cout << Host::scriptNonce(); });
    EXPECT_NE(other.body, response.body);
}

TEST_F(ResponseTest, sendsReasonWithStatus) {
    const std::map<int, std::string> reasons = {
        {200, "200 OK"},
        {303, "303 See Other"},
        {400, "400 Bad Request"},
        {403, "403 Forbidden"},
        {404, "404 Not Found"},
        {405, "405 Method Not Allowed"},
        {413, "413 Content Too Large"},
        {429, "429 Too Many Requests"},
        {500, "500 Internal Server Error"},
        {503, "503 Service Unavailable"},
    };
    for (const auto& entry : reasons) {
        const CGIResponse response =
            responseOf([&entry](Response& made) { made.setStatus(entry.first); });
        EXPECT_EQ(response.status, entry.second);
    }
}

TEST_F(ResponseTest, addsHeaders) {
    const CGIResponse response = responseOf([](Response& made) {
        made.addHeader("Location", "/maintenance/x?a=b");
        made.addHeader("Allow", "GET");
        made.setContentType("application/octet-stream");
    });
    EXPECT_EQ(response.header("Location"), "/maintenance/x?a=b");
    EXPECT_EQ(response.header("Allow"), "GET");
    EXPECT_EQ(response.header("Content-Type"), "application/octet-stream");
}

TEST_F(ResponseTest, omitsHeaderWithLineBreak) {
    const CGIResponse plain = responseOf([](Response&) {});
    for (const char* hostile : {"x\r\nSet-Cookie: a=b", "x\nSet-Cookie: a=b", "x\r", "\n"}) {
        const CGIResponse response = responseOf([&](Response& made) {
            made.addHeader("Location", hostile);
            made.addHeader(hostile, "value");
            made.setContentType(hostile);
        });
        EXPECT_EQ(response.headers, plain.headers);
        EXPECT_EQ(response.body, "");
    }
}

TEST_F(ResponseTest, discardClearsPageAndHeaders) {
    const CGIResponse response = responseOf([](Response& made) {
        std::cout << "half a page";
        made.addHeader("Location", "/");
        made.setContentType("application/octet-stream");
        std::cout.setstate(std::ios::failbit);
        made.discard();
        std::cout << "whole";
    });
    EXPECT_EQ(response.body, "whole");
    EXPECT_EQ(response.header("Location"), "");
    EXPECT_EQ(response.header("Content-Type"), "text/html; charset=UTF-8");
}

TEST_F(ResponseTest, answersHeadWithHeadersOnly) {
    const auto work = [](Response&) { std::cout << "the page"; };
    const CGIResponse head = parseResponse(respond(work, HEAD).output, true);
    EXPECT_EQ(head.headers, responseOf(work).headers);
    EXPECT_EQ(head.header("Content-Length"), "8");
}

TEST_F(ResponseTest, writesNothingBeforeSend) {
    const ChildResult result = runInChild([] {
        {
            const Response response;
            std::cout << "never sent" << std::flush;
        }
        std::cout << "after";
        return 0;
    });
    EXPECT_EQ(result.output, "after");
}

TEST_F(ResponseTest, sendsHeaderAndBodyInOneWrite) {
    int ends[2] = {};
    // Each write to such a socket is one message.
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const std::string page(20000, 'p');
    const ChildResult result = respond([&page](Response&) { std::cout << page; }, GET,
                                       [&ends] { return replaceOutput(ends[1]); });
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    ::close(ends[1]);
    std::string message(65536, '\0');
    const ssize_t size = ::recv(ends[0], message.data(), message.size(), 0);
    ASSERT_GT(size, 0);
    message.resize(static_cast<std::size_t>(size));
    EXPECT_EQ(parseResponse(message).body, page);
    EXPECT_EQ(::recv(ends[0], message.data(), message.size(), 0), 0) << "a second write";
    ::close(ends[0]);
}

TEST_F(ResponseTest, sendsLargePageDespiteSignals) {
    const std::string page(3 * 1024 * 1024, 'p');
    ChildProcess child(
        [&page] {
            Response response;
            std::cout << page;
            interruptOften();
            return response.send() ? 0 : NOT_SENT;
        },
        GET);
    ::usleep(50000);  // until the pipe is full and the writer interrupted
    const ChildResult result = child.wait();
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_EQ(parseResponse(result.output).body.size(), page.size());
}

TEST_F(ResponseTest, failsWithoutStandardOutput) {
    const ChildResult result = respond([](Response&) { std::cout << "page"; }, GET,
                                       [] { return ::close(STDOUT_FILENO) == 0; });
    EXPECT_EQ(result.exitStatus, NOT_SENT);
    EXPECT_EQ(result.signal, 0);
}

TEST_F(ResponseTest, survivesClosedConnection) {
    const ChildResult result =
        respond([](Response&) { std::cout << "page"; }, GET,
                [] {
                    int ends[2] = {};
                    return ::pipe(ends) == 0 && ::close(ends[0]) == 0 && replaceOutput(ends[1]);
                });
    EXPECT_EQ(result.exitStatus, NOT_SENT);
    EXPECT_EQ(result.signal, 0);
}

TEST_F(ResponseTest, survivesFullDevice) {
    const ChildResult result = respond([](Response&) { std::cout << "page"; }, GET,
                                       [] { return replaceOutput(::open("/dev/full", O_WRONLY)); });
    EXPECT_EQ(result.exitStatus, NOT_SENT);
}

TEST_F(ResponseTest, survivesFileSizeLimit) {
    const std::string path = boardFile("/var/tmp/response");
    const ChildResult result = respond(
        [](Response&) {
            // Set here, so that the limit applies only to the response.
            const rlimit limit = {.rlim_cur = 100, .rlim_max = RLIM_INFINITY};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            std::cout << "page";
        },
        GET, [&path] { return replaceOutput(::open(path.c_str(), O_WRONLY | O_CREAT, 0600)); });
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.exitStatus, NOT_SENT);
    EXPECT_EQ(readText(path).size(), 100u);
}

}  // namespace VeskLib::Test
