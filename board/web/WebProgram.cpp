#include "board/web/WebProgram.h"

#include "board/web/webCaptions.h"
#include "platform/host/base/Environment.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/text/issuedTexts.h"
#include "platform/host/web/formPolicy.h"
#include "platform/host/web/requestAudit.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/Gui/MessageMgr.h>

#include <string_view>

namespace VeskLib::Board {

namespace {

// These programs accept no file, and their forms fit into this size.
const std::size_t LARGEST_BODY = 4 * 1024;

bool isListed(std::string_view methods, const std::string& method) {
    return (", " + std::string(methods) + ",").find(", " + method + ",") != std::string::npos;
}

void respond(const WebProgram& program, Host::Response& response) {
    Host::RequestVerdict verdict = Host::checkRequest();
    if (verdict == Host::RequestVerdict::ACCEPTED &&
        !isListed(program.allowedMethods, Host::readEnvironment("REQUEST_METHOD"))) {
        verdict = Host::RequestVerdict::METHOD_NOT_ALLOWED;
    }
    Host::recordVerdict(verdict);
    if (verdict == Host::RequestVerdict::METHOD_NOT_ALLOWED) {
        Host::printErrorPage(program.otherMethods(), response);
        response.addHeader("Allow", program.allowedMethods);
    } else if (verdict == Host::RequestVerdict::MISDIRECTED) {
        Host::printErrorPage(Host::makeMisdirectedPage(), response);
    } else if (verdict == Host::RequestVerdict::CROSS_SITE) {
        Host::printErrorPage(Host::makeCrossSitePage(), response);
    } else {
        Host::formPolicy().bodyLength = LARGEST_BODY;
        Host::formPolicy().file = Host::FormPolicy::File::REFUSED;
        program.handle(Gui::FormInfo(), response);
    }
}

}  // namespace

int runWebProgram(const WebProgram& program) {
    Host::Response response;
    try {
        respond(program, response);
    } catch (...) {
        Host::printHandledException(response);
    }
    return response.send() ? 0 : 1;
}

Host::ErrorPage makeRefusal(int status, int caption) {
    return {.status = status,
            .title = Gui::MessageMgr(Host::requestLanguage()).getString(REFUSAL_TITLE),
            .message = Host::issueCaption(caption)};
}

void redirect(Host::Response& response, const std::string& path) {
    response.setStatus(303);
    response.addHeader("Location", path);
}

const Host::RequestSession* findRequestSession() {
    return Host::findRequestSession(Host::requestCookie());
}

}  // namespace VeskLib::Board
