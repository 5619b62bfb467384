#pragma once

#include "platform/host/web/Response.h"
#include "platform/host/web/errorPage.h"
#include "platform/host/web/requestSession.h"

#include <VeskLib/Gui/FormInfo.h>

#include <string>

namespace VeskLib::Board {

// One of the board's own CGI programs.
struct WebProgram {
    const char* allowedMethods;         // as in the Allow header
    Host::ErrorPage (*otherMethods)();  // returns the page for other methods

    // Prints the page and sets the response's status and headers. Throws Host::ErrorPage to send
    // that page instead.
    void (*handle)(const Gui::FormInfo& form, Host::Response& response);
};

// Handles the request of this process and returns the program's exit status. Every failure,
// including a PException, results in a complete page.
int runWebProgram(const WebProgram& program);

// Returns a page that explains by a caption of the catalogue why a request was not carried out.
Host::ErrorPage makeRefusal(int status, int caption);

// Redirects the browser to `path` on this site, with GET.
void redirect(Host::Response& response, const std::string& path);

// Returns the session of the request's cookie, or null.
const Host::RequestSession* findRequestSession();

}  // namespace VeskLib::Board
