#include "tests/web/WebTest.h"

#include "platform/host/text/Catalogue.h"
#include "tests/support/files.h"
#include "tests/support/markup.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>

namespace VeskLib::Test {

namespace {

// Contains only CGI variables and none of the test's own environment, as with a web server.
ChildSetup makeSetup(const WebRequest& request) {
    ChildSetup setup;
    setup.environment = {{"REQUEST_METHOD", request.method}, {"QUERY_STRING", request.query},
                         {"SCRIPT_NAME", "/program.cgi"},    {"HTTP_HOST", "127.0.0.1:8080"},
                         {"REMOTE_ADDR", "127.0.0.1"},       {"CONTENT_LENGTH", "0"}};
    if (!request.cookie.empty()) {
        setup.environment["HTTP_COOKIE"] = request.cookie;
    }
    if (request.method == "POST") {
        setup.input = request.form;
        setup.environment["CONTENT_LENGTH"] = std::to_string(request.form.size());
        setup.environment["CONTENT_TYPE"] = "application/x-www-form-urlencoded";
    }
    for (const auto& [name, value] : request.more) {
        setup.environment[name] = value;
    }
    return setup;
}

}  // namespace

CGIResponse runWebProgram(const std::string& program, const WebRequest& request) {
    const ChildResult result = runProgram({program}, makeSetup(request));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.errors, "");
    CGIResponse response = parseResponse(result.output, request.method == "HEAD");
    EXPECT_EQ(response.header("Cache-Control"), "no-store");
    EXPECT_EQ(response.header("X-Content-Type-Options"), "nosniff");
    return response;
}

std::string cookieOf(const Host::Session& session) {
    return "session=" + session.cookieValue();
}

std::string caption(int number) {
    const char* text = Host::findText(Host::ENGLISH, Host::TextSet::CAPTIONS, number);
    EXPECT_NE(text, nullptr) << number;
    return text == nullptr ? "" : text;
}

void expectPage(const CGIResponse& response, const std::string& status, const std::string& text) {
    EXPECT_EQ(response.status, status);
    EXPECT_EQ(response.header("Content-Type"), "text/html; charset=UTF-8");
    EXPECT_EQ(response.header("Content-Disposition"), "");
    EXPECT_EQ(response.header("Set-Cookie"), "");
    EXPECT_EQ(response.header("Location"), "");
    EXPECT_TRUE(response.body.starts_with("<!DOCTYPE html>")) << response.body;
    EXPECT_TRUE(response.body.ends_with("</html>\n")) << response.body;
    EXPECT_NE(textOf(response.body).find(text), std::string::npos) << response.body;
}

void expectRedirection(const CGIResponse& response, const std::string& location) {
    EXPECT_EQ(response.status, "303 See Other");
    EXPECT_EQ(response.header("Location"), location);
    EXPECT_EQ(response.body, "");
}

std::vector<std::string> WebTest::sessionFiles() {
    return namesIn(boardFile("/var/lib/session"));
}

std::string WebTest::trace() {
    const std::string path = boardFile("/var/log/trace.log");
    return exists(path) ? readText(path) : "";
}

void WebTest::expire(const Host::Session& session) {
    const timespec longAgo[] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1, .tv_nsec = 0}};
    const std::string path = boardFile("/var/lib/session/" + session.identifier);
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), longAgo, 0), 0) << path;
}

}  // namespace VeskLib::Test
