#include "board/web/WebProgram.h"

#include "board/web/webCaptions.h"
#include "platform/host/base/Environment.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/JudgeAuthority.h>
#include <VeskLib/Gui/MessageMgr.h>

#include <string_view>

namespace VeskLib::Board {

namespace {

const int WHOLE_SERVER = -1;

bool isListed(std::string_view methods, const std::string& method) {
    return (", " + std::string(methods) + ",").find(", " + method + ",") != std::string::npos;
}

void respond(const WebProgram& program, Host::Response& response) {
    const Host::RequestVerdict verdict = Host::checkRequest();
    if (verdict == Host::RequestVerdict::METHOD_NOT_ALLOWED ||
        !isListed(program.allowedMethods, Host::readEnvironment("REQUEST_METHOD"))) {
        Host::printErrorPage(program.otherMethods(), response);
        response.addHeader("Allow", program.allowedMethods);
    } else if (verdict == Host::RequestVerdict::MISDIRECTED) {
        Host::printErrorPage(Host::makeMisdirectedPage(), response);
    } else if (verdict == Host::RequestVerdict::CROSS_SITE) {
        Host::printErrorPage(Host::makeCrossSitePage(), response);
    } else {
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
    const Gui::MessageMgr captions(Host::requestLanguage());
    return {.status = status,
            .title = captions.getString(REFUSAL_TITLE),
            .message = captions.getString(caption)};
}

void redirect(Host::Response& response, const std::string& path) {
    response.setStatus(303);
    response.addHeader("Location", path);
}

bool findRequestSession(Host::Session& session) {
    return Host::findSession(Host::readCookie(Host::SESSION_COOKIE), session);
}

// Judged as the programs behind the links judge it.
bool mayUse(const Host::Session& session, int function) {
    const Gui::CGIAuthority authority = {.everyFunction = session.everyFunction ? 1 : 0,
                                         .functions = &session.functions};
    Gui::CGIRequester requester(session.cookieValue().c_str());
    Gui::JudgeAuthority judge(&authority, function, WHOLE_SERVER);
    return judge.preCheckDisplayMode(requester) == 1 || judge.getDisplayMode() != 0;
}

}  // namespace VeskLib::Board
