#pragma once

#include "platform/host/session/Session.h"
#include "tests/support/BoardTest.h"
#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"

#include <string>
#include <vector>

namespace VeskLib::Test {

// A request as the web server passes it to a program.
struct WebRequest {
    std::string method = "GET";
    std::string query = {};
    std::string form = {};    // the body of a POST, urlencoded
    std::string cookie = {};  // the whole Cookie header
    Environment more = {};    // additional environment variables; they override the others
};

// Runs one of the board's web programs. Expects a clean exit, an empty standard error, and the
// headers that every response has.
CGIResponse runWebProgram(const std::string& program, const WebRequest& request);

// Returns the Cookie header of a browser logged in as `session`.
std::string cookieOf(const Host::Session& session);

// Returns the English caption of that number; the test fails if there is none.
std::string caption(int number);

// Expects a page with this status that shows `text`, and no download, cookie or redirection.
void expectPage(const CGIResponse& response, const std::string& status, const std::string& text);

// Expects a redirection to `location`.
void expectRedirection(const CGIResponse& response, const std::string& location);

class WebTest : public BoardTest {
protected:
    // Returns the names of all session files.
    static std::vector<std::string> sessionFiles();

    static std::string trace();

    // Makes a session look as if it was last used long ago.
    static void expire(const Host::Session& session);
};

}  // namespace VeskLib::Test
