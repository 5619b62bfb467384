#include "platform/host/web/errorPage.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/messageLines.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/text/issuedTexts.h"
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
const int REFUSAL_TITLE = 9010;
const int INTERNAL_ERROR_TITLE = 9016;
const int NO_BACKEND_CODE = 1;     // unavailable although the back-end did not fail
const int OTHER_BACKEND_CODE = 2;  // any code without a text of its own
const char* const SKELETON_FILE = "/usr/local/www/skel/skeleton_error.txt";

std::string caption(int number) {
    return Gui::MessageMgr(requestLanguage()).getString(number);
}

class Notice : public Gui::HTMLComponent {
public:
    explicit Notice(const std::string& message) : message(message) {}

    void printHTML() const override { printNotice(message, Outcome::REFUSED); }
    bool isError() const override { return false; }

private:
    const std::string& message;
};

void printFromSkeleton(const ErrorPage& page) {
    TextString title(page.title);
    Notice message(page.message);
    TextString link("");
    TextString login(loginPath(wantedFunction()));
    shareBoardName();
    std::map<std::string, Gui::HTMLComponent*> components = {{"title", &title},
                                                             {"message", &message}};
    if (page.offerLogin) {
        // The session may have ended while its request was processed.
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

// Explains a failed request to the back-end by its code, in the operator's language.
std::string explainUnavailable(int backendCode) {
    const auto find = [](int code) {
        return findTextForCode(requestLanguage(), UNAVAILABLE_TEXT, code);
    };
    const char* const own = find(backendCode == 0 ? NO_BACKEND_CODE : backendCode);
    const char* const text = own != nullptr ? own : find(OTHER_BACKEND_CODE);
    std::string explanation = text == nullptr ? "" : text;
    explanation += " [" + std::to_string(UNAVAILABLE_TEXT) +
                   (backendCode == 0 ? "]" : "-" + std::to_string(backendCode) + "]");
    noteIssuedText(explanation, {.number = UNAVAILABLE_TEXT, .code = backendCode});
    return explanation;
}

// Returns the exception's message with its arguments.
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
            // The generator has traced why the skeleton cannot be used.
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
    ErrorPage page = {.status = 500,
                      .title = caption(INTERNAL_ERROR_TITLE),
                      .message = issueCaption(9020, detail)};
    if (detail == REQUEST_TOO_LARGE) {
        page.status = 413;
        page.message = issueCaption(9022, detail);
    } else if (detail == SESSION_FILE_REFUSED) {
        page.message = issueCaption(9021, detail);
    } else if (detail == REQUEST_TOO_SLOW) {
        page.status = 408;
        page.message = issueCaption(9017, detail);
    } else if (detail == REQUEST_MALFORMED) {
        page.status = 400;
        // Only a form with a file is sent as multipart.
        page.message = isMediaType(readEnvironment("CONTENT_TYPE"), MULTIPART_FORM)
                           ? Gui::MessageMgr(requestLanguage()).getMessage(30, detail)
                           : issueCaption(9023, detail);
    }
    if (page.status != 500 || detail == SESSION_FILE_REFUSED) {
        page.title = caption(REFUSAL_TITLE);
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

std::string explain(const std::string& message, int backendCode) {
    std::string explained;
    for (const std::string& line : splitMessage(message)) {
        const IssuedText* const issued = findIssuedText(line);
        explained += explained.empty() ? "" : "<br>";
        if (issued != nullptr && issued->number == UNAVAILABLE_TEXT) {
            explained += explainUnavailable(backendCode) + "<br>";
        }
        explained += line;
    }
    return explained;
}

ErrorPage makeMethodPage() {
    return {.status = 405, .title = caption(REFUSAL_TITLE), .message = issueCaption(9024)};
}

// Without links, which would lead to the same wrong host name.
ErrorPage makeMisdirectedPage() {
    return {.status = 421,
            .title = caption(REFUSAL_TITLE),
            .message = issueCaption(9029),
            .offerMenu = false};
}

ErrorPage makeCrossSitePage() {
    return {.status = 403, .title = caption(REFUSAL_TITLE), .message = issueCaption(9025)};
}

ErrorPage makeInternalErrorPage() {
    return {.status = 500, .title = caption(INTERNAL_ERROR_TITLE), .message = issueCaption(9020)};
}

ErrorPage makeLoginPage() {
    return {
        .status = 403, .title = caption(9011), .message = issueCaption(9026), .offerLogin = true};
}

}  // namespace VeskLib::Host
