#pragma once

#include "platform/host/web/Response.h"

#include <VeskLib/PException.h>

#include <string>

namespace VeskLib::Host {

struct ErrorPage {
    int status = 500;
    std::string title;
    std::string message;      // plain text; lines are joined by "<br>"
    bool offerLogin = false;  // a link to the login form
    bool offerMenu = true;    // if not that, a link to the menu
};

// Makes `page` the response, replacing everything printed so far. If its skeleton cannot be used,
// the response is a plain page with the same texts; if that cannot be printed either, it is the one
// of Response::useLastResort().
void printErrorPage(const ErrorPage& page, Response& response) noexcept;

// Makes the response the error page of an uncaught exception, and writes a trace line. Throws
// std::bad_alloc if there is not enough memory.
void printExceptionPage(const PException& exception, Response& response);

// Must be called within an exception handler. Makes the response the error page of the current
// exception and traces a failure. An ErrorPage that was thrown is printed unchanged.
void printHandledException(Response& response) noexcept;

// Returns a page's `message` with an explanation before each trace text in it, in the language of
// the request. `backendCode` is the error code of the last request to the back-end, 0 if it
// succeeded.
std::string explain(const std::string& message, int backendCode);

// Return the error pages of the checks that every program makes, in requestLanguage().
ErrorPage makeMethodPage();
ErrorPage makeMisdirectedPage();
ErrorPage makeCrossSitePage();
ErrorPage makeLoginPage();
ErrorPage makeInternalErrorPage();

}  // namespace VeskLib::Host
