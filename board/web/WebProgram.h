#pragma once

#include "platform/host/web/Response.h"
#include "platform/host/web/Session.h"

#include <VeskLib/Gui/FormInfo.h>

#include <string>

namespace VeskLib::Board {

// One of the board's own CGI programs.
struct WebProgram {
    const char* allowedMethods;  // as the Allow header lists them
    int wrongMethodCaption;      // what the page for any other method says

    // Prints the page and sets up the response around it, or throws WebRefusal.
    void (*handle)(const Gui::FormInfo& form, Host::Response& response);
};

// Thrown by a program's handle(): instead of what was asked for, the browser gets a page that says
// why not.
struct WebRefusal {
    int status;      // of the response
    int caption;     // what the page says
    int detail = 0;  // stands behind it when it is not 0
};

// Handles the request of this process; the result is the program's exit status. Every failure,
// also a thrown PException, ends in a whole page.
int runWebProgram(const WebProgram& program);

// Sends the browser to `path` of this site, with GET.
void redirect(Host::Response& response, const std::string& path);

// The session that the request's cookie stands for. False, with `session` unchanged, when there
// is none.
bool findRequestSession(Host::Session& session);

// Whether the session's user may use a function of the board.
bool mayUse(const Host::Session& session, int function);

}  // namespace VeskLib::Board
