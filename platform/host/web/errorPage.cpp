#include "platform/host/web/errorPage.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/messageLines.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/web/headerValue.h"
#include "platform/host/web/ownPages.h"
#include "platform/host/web/pageHeader.h"

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/lmsg_getmsg.h>
#include <VeskLib/trace/VeskTrace.h>

#include <exception>
#include <iostream>
#include <map>

namespace VeskLib::Host {

namespace {

using Gui::TextString;

const std::size_t MESSAGE_SIZE = 256;
const char* const SKELETON_FILE = "/usr/local/www/skel/skeleton_error.txt";

std::string caption(int number) {
    return Gui::MessageMgr(requestLanguage()).getString(number);
}

// A message of several texts, each a paragraph.
class MessageText : public Gui::HTMLComponent {
public:
    explicit MessageText(const std::string& message) : message(message) {}

    void printHTML() const override { printMessage(message); }
    bool isError() const override { return false; }

private:
    const std::string& message;
};

void printFromSkeleton(const ErrorPage& page) {
    TextString title(page.title);
    MessageText message(page.message);
    TextString link("");
    TextString login(loginPath(wantedFunction()));
    shareBoardName();
    std::map<std::string, Gui::HTMLComponent*> components = {{"title", &title},
                                                             {"message", &message}};
    if (page.offerLogin) {
        // Also if the session has ended while its request was worked on.
        unshareSession();
        components["login"] = &login;
    } else if (page.offerMenu) {
        components["menu"] = &link;
    }
    Gui::HTMLCodeGenerator(SKELETON_FILE, &components).printHTML();
}

void printPlain(const ErrorPage& page) {
    std::cout << "<!DOCTYPE html><html><head><title>" << escapeHTML(page.title)
              << "</title></head><body><h1>" << escapeHTML(page.title) << "</h1>";
    printMessage(page.message);
    std::cout << "</body></html>\n";
}

// The exception's message, with the arguments it carries.
std::string describe(const PException& exception) {
    char text[MESSAGE_SIZE];
    lmsg_getmsg(exception.getMessageNumber(), text, exception.getArgument(0),
                exception.getArgument(1), exception.getArgument(2), exception.getArgument(3));
    return std::string(text) + " [" + std::to_string(exception.getExceptionDetail()) + "]";
}

}  // namespace

void printErrorPage(const ErrorPage& page, Response& response) noexcept {
    try {
        response.discard();
        response.setStatus(page.status);
        try {
            printFromSkeleton(page);
        } catch (...) {
            // The generator has traced why a skeleton cannot be used.
            response.discard();
            printPlain(page);
        }
    } catch (...) {
        response.useLastResort();
    }
}

void printExceptionPage(const PException& exception, Response& response) {
    trace::VeskTrace(1, 1, 1).putLog(0, describe(exception).c_str());
    const int detail = exception.getExceptionDetail();
    const std::string code = " [" + std::to_string(detail) + "]";
    ErrorPage page = {.status = 500, .title = caption(9010), .message = caption(9020) + code};
    if (detail == REQUEST_TOO_LARGE) {
        page.status = 413;
        page.message = caption(9022) + code;
    } else if (detail == SESSION_FILE_REFUSED) {
        page.message = caption(9021) + code;
    } else if (detail == REQUEST_TOO_SLOW) {
        page.status = 408;
        page.message = caption(9023) + code;
    } else if (detail == REQUEST_MALFORMED) {
        page.status = 400;
        // Only a form with a file is sent in parts.
        page.message = isMediaType(readEnvironment("CONTENT_TYPE"), MULTIPART_FORM)
                           ? Gui::MessageMgr(requestLanguage()).getMessage(30, detail)
                           : caption(9023) + code;
    }
    printErrorPage(page, response);
}

void printHandledException(Response& response) noexcept {
    try {
        try {
            throw;
        } catch (const ErrorPage& page) {
            printErrorPage(page, response);
        } catch (const PException& exception) {
            printExceptionPage(exception, response);
        } catch (const std::exception& exception) {
            trace::VeskTrace(1, 1, 1).putLog(0, exception.what());
            printErrorPage(makeInternalErrorPage(), response);
        }
    } catch (...) {
        response.useLastResort();
    }
}

ErrorPage makeMethodPage() {
    return {.status = 405, .title = caption(9010), .message = caption(9024)};
}

// A link would lead to the same wrong name.
ErrorPage makeMisdirectedPage() {
    return {.status = 421, .title = caption(9010), .message = caption(9029), .offerMenu = false};
}

ErrorPage makeCrossSitePage() {
    return {.status = 403, .title = caption(9010), .message = caption(9025)};
}

ErrorPage makeInternalErrorPage() {
    return {.status = 500, .title = caption(9010), .message = caption(9020)};
}

ErrorPage makeLoginPage() {
    return {.status = 403, .title = caption(9011), .message = caption(9026), .offerLogin = true};
}

}  // namespace VeskLib::Host
