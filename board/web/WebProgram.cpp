#include "board/web/WebProgram.h"

#include "board/web/WebPage.h"
#include "board/web/webCaptions.h"
#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/PException.h>
#include <VeskLib/trace/VeskTrace.h>

#include <exception>
#include <iostream>
#include <string_view>

namespace VeskLib::Board {

namespace {

const char* const REFUSAL_SKELETON = "/usr/local/www/skel/skeleton_web_refusal.txt";

void traceFailure(const std::string& what) {
    const std::string program = Host::readEnvironment("SCRIPT_NAME");
    trace::VeskTrace(1, 3, 1).putLog(0, (program + ": " + what).c_str());
}

bool isListed(std::string_view methods, const std::string& method) {
    return (", " + std::string(methods) + ",").find(", " + method + ",") != std::string::npos;
}

void checkMethod(const WebProgram& program, Host::Response& response) {
    const Host::RequestVerdict verdict = Host::checkRequest();
    if (verdict == Host::RequestVerdict::METHOD_NOT_ALLOWED ||
        !isListed(program.allowedMethods, Host::readEnvironment("REQUEST_METHOD"))) {
        response.addHeader("Allow", program.allowedMethods);
        throw WebRefusal{405, program.wrongMethodCaption};
    }
    if (verdict == Host::RequestVerdict::CROSS_SITE) {
        throw WebRefusal{403, CROSS_SITE_POST};
    }
}

void printRefusal(const WebRefusal& refusal) {
    WebPage page(REFUSAL_SKELETON, REFUSAL_TITLE);
    page.putCaption("message", refusal.caption, refusal.detail);
    Host::Session session;
    if (findRequestSession(session)) {
        page.putText("account", session.user);
    } else {
        page.putText("no_account", "");
    }
    page.print();
}

// For a board whose skeletons or catalogues cannot be read either.
void printBarePage() {
    std::cout << "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\">"
                 "<title>Error</title></head>\n<body><p>The board could not show this page. Tell "
                 "the board's administrator; the trace log tells more.</p></body>\n</html>\n";
}

void refuse(const WebRefusal& refusal, Host::Response& response) {
    response.setStatus(refusal.status);
    try {
        printRefusal(refusal);
    } catch (const PException& exception) {
        traceFailure("no page for the failure, code " +
                     std::to_string(exception.getExceptionDetail()));
        response.discard();
        printBarePage();
    }
}

WebRefusal explain(const PException& exception) {
    const int detail = exception.getExceptionDetail();
    switch (detail) {
        case Host::REQUEST_MALFORMED:
            return {400, REQUEST_NOT_READABLE, detail};
        case Host::REQUEST_TOO_LARGE:
            return {413, REQUEST_NOT_READABLE, detail};
        default:
            return {500, INTERNAL_PROBLEM, detail};
    }
}

void respond(const WebProgram& program, Host::Response& response) {
    try {
        checkMethod(program, response);
        program.handle(Gui::FormInfo(), response);
    } catch (const WebRefusal& refusal) {
        refuse(refusal, response);
    } catch (const PException& exception) {
        traceFailure("exception " + std::to_string(exception.getExceptionDetail()));
        response.discard();
        refuse(explain(exception), response);
    }
}

}  // namespace

int runWebProgram(const WebProgram& program) {
    Host::Response response;
    try {
        respond(program, response);
    } catch (const std::exception& exception) {
        traceFailure(exception.what());
        response.discard();
        response.setStatus(500);
        printBarePage();
    }
    return response.send() ? 0 : 1;
}

void redirect(Host::Response& response, const std::string& path) {
    response.setStatus(303);
    response.addHeader("Location", path);
}

bool findRequestSession(Host::Session& session) {
    return Host::findSession(Host::readCookie(Host::SESSION_COOKIE), session);
}

bool mayUse(const Host::Session& session, int function) {
    const std::string listed = "," + std::to_string(function) + ",";
    return session.everyFunction || session.functions.find(listed) != std::string::npos;
}

}  // namespace VeskLib::Board
