#pragma once

#include "platform/host/web/Response.h"
#include "platform/host/web/errorPage.h"
#include "platform/host/web/requestSession.h"

#include <VeskLib/Gui/FormInfo.h>

#include <string>

namespace VeskLib::Board {

// One of the board's own CGI programs.
struct WebProgram {
    const char* allowedMethods;         // as the Allow header lists them
    Host::ErrorPage (*otherMethods)();  // the answer to every other method

    // Prints the page and sets up the response around it. Throws Host::ErrorPage when the browser
    // gets that page instead.
    void (*handle)(const Gui::FormInfo& form, Host::Response& response);
};

// Handles the request of this process; the result is the program's exit status. Every failure,
// also a thrown PException, ends in a whole page.
int runWebProgram(const WebProgram& program);

// The page that says, with a caption of the catalogue, why a request was not carried out.
Host::ErrorPage makeRefusal(int status, int caption);

// Sends the browser to `path` of this site, with GET.
void redirect(Host::Response& response, const std::string& path);

// The session that the request's cookie stands for; null when there is none.
const Host::RequestSession* findRequestSession();

}  // namespace VeskLib::Board
