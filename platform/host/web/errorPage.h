#pragma once

#include "platform/host/web/Response.h"

#include <VeskLib/PException.h>

#include <string>

namespace VeskLib::Host {

struct ErrorPage {
    int status = 500;
    std::string title;
    std::string message;      // plain text, several joined by "<br>"
    bool offerLogin = false;  // whether logging in is what to do next
    bool offerMenu = true;    // whether the menu is, if not
};

// Makes `page` the response, in place of everything printed so far. If the page's skeleton cannot
// be used, the response is a plain page of the same words; if that cannot be printed either, it is
// the one of Response::useLastResort().
void printErrorPage(const ErrorPage& page, Response& response) noexcept;

// Makes the response the error page of an uncaught exception, and writes a trace line.
// Throws what the C++ library throws when there is no memory for either.
void printExceptionPage(const PException& exception, Response& response);

// Called while an exception is handled: makes the response the error page that it stands for, with
// a trace line where it tells of a failure. An ErrorPage that was thrown is printed as it is.
void printHandledException(Response& response) noexcept;

// Returns a page's `message` with an explanation before each trace text in it, in the language of
// the request. `backendCode` is the one of the last request to the back-end, 0 if it succeeded.
std::string explain(const std::string& message, int backendCode);

// The error pages of the checks that every program makes; requestLanguage() is their language.
ErrorPage makeMethodPage();
ErrorPage makeMisdirectedPage();
ErrorPage makeCrossSitePage();
ErrorPage makeLoginPage();
ErrorPage makeInternalErrorPage();

}  // namespace VeskLib::Host
