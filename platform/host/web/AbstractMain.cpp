#include <VeskLib/Gui/AbstractMain.h>

#include "platform/host/text/Catalogue.h"
#include "platform/host/web/Response.h"
#include "platform/host/web/errorPage.h"
#include "platform/host/web/formPolicy.h"
#include "platform/host/web/refusedPage.h"
#include "platform/host/web/requestAudit.h"
#include "platform/host/web/requestChecks.h"
#include "platform/host/web/requestSession.h"
#include "platform/host/web/sessionFiles.h"

#include <utility>

namespace VeskLib::Gui {

using Host::ErrorPage;

namespace {

const int FAILED = 1;  // the exit status of a request that ended with an error page
const int FORBIDDEN = 403;

}  // namespace

int AbstractMain::exec() {
    Host::Response response;
    int result = FAILED;
    try {
        const Host::RequestVerdict verdict = Host::checkRequest();
        Host::recordVerdict(verdict);
        switch (verdict) {
            case Host::RequestVerdict::ACCEPTED:
                result = individualProc();
                break;
            case Host::RequestVerdict::METHOD_NOT_ALLOWED:
                printErrorPage(Host::makeMethodPage(), response);
                response.addHeader("Allow", "GET, HEAD, POST");
                break;
            case Host::RequestVerdict::MISDIRECTED:
                printErrorPage(Host::makeMisdirectedPage(), response);
                break;
            case Host::RequestVerdict::CROSS_SITE:
                printErrorPage(Host::makeCrossSitePage(), response);
                break;
        }
    } catch (...) {
        Host::printHandledException(response);
        // The form data outlives the request; its uploaded file must not.
        if (formInfo != nullptr) {
            formInfo->terminate();
        }
    }
    try {
        Host::settleRequest();
    } catch (...) {
        Host::printHandledException(response);
        result = FAILED;
    }
    if (Host::wasPageRefused()) {
        response.setStatus(FORBIDDEN);
    }
    return response.send() ? result : FAILED;
}

void AbstractMain::getCookie() {
    sessionText = Host::requestCookie();
    // Files are stored only after the session has been checked.
    Host::formPolicy().file = Host::FormPolicy::File::COUNTED;
    messageSet = Host::requestLanguage();
}

void AbstractMain::guiCheckSession(bool showError) {
    const Host::RequestSession* const found = Host::findRequestSession(sessionText);
    if (found == nullptr) {
        if (showError) {
            throw Host::makeLoginPage();
        }
        return;
    }
    authority.everyFunction = found->rights.everyFunction ? 1 : 0;
    authority.functions = &found->rights.functions;
    if (found->mayUse(Host::RESTORE_FUNCTION)) {
        Host::formPolicy().file = Host::FormPolicy::File::STORED;
    }
    if (Host::isPost()) {
        Host::checkSessionFiles();
    }
}

void AbstractMain::errorExit(std::string title, std::string message) {
    // The error is the server's if the back-end failed, otherwise the client's.
    const int backendCode = requester != nullptr ? requester->getErrorCode() : 0;
    // Thrown, so that unwinding to exec() releases everything that the request uses.
    throw ErrorPage{.status = backendCode != 0 ? 503 : 400,
                    .title = std::move(title),
                    .message = Host::explain(message, backendCode)};
}

void AbstractMain::errorExit(std::string message, int code) {
    errorExit("Error", std::move(message) + " [" + std::to_string(code) + "]");
}

}  // namespace VeskLib::Gui
