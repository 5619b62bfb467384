#pragma once

#include "platform/host/session/Session.h"
#include "tests/support/BoardTest.h"
#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"

#include <string>
#include <vector>

namespace VeskLib::Test {

// A request as the web server hands it to a program.
struct WebRequest {
    std::string method = "GET";
    std::string query = {};
    std::string form = {};    // the body of a POST, urlencoded
    std::string cookie = {};  // the whole Cookie header
    Environment more = {};    // further variables
};

// Runs one of the board's web programs. Every response that it gives is held against the rules
// that all of them keep.
CGIResponse runWebProgram(const std::string& program, const WebRequest& request);

// The Cookie header of a browser that is logged in to `session`.
std::string cookieOf(const Host::Session& session);

// A caption of the board, in English.
std::string caption(int number);

// The response is a page of that status that shows the text, and nothing else: no download, no
// cookie, no redirection.
void expectPage(const CGIResponse& response, const std::string& status, const std::string& text);

// The response sends the browser to `location`.
void expectRedirection(const CGIResponse& response, const std::string& location);

// A test of the board's web programs.
class WebTest : public BoardTest {
protected:
    // The files of the sessions that there are.
    static std::vector<std::string> sessionFiles();

    static std::string trace();

    // Makes a session look as if it was last used long ago.
    static void expire(const Host::Session& session);
};

}  // namespace VeskLib::Test
