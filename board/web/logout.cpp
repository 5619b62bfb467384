#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/cookies.h"
#include "platform/host/base/platformException.h"

namespace VeskLib::Board {

namespace {

Host::ErrorPage makeMethodPage() {
    return makeRefusal(405, LOGOUT_NEEDS_BUTTON);
}

void handleLogout(const Gui::FormInfo& /*form*/, Host::Response& response) {
    const Host::RequestSession* const user = findRequestSession();
    if (user != nullptr) {
        // Does not report a logout while the session still exists.
        if (!Host::endSession(user->session.identifier)) {
            throw Host::makePlatformException(Host::SESSION_NOT_ENDED,
                                              "The session cannot be ended");
        }
        Host::record(Host::makeAuditEvent("logout"));
    }
    response.addHeader("Clear-Site-Data", "\"cache\", \"storage\"");
    response.addHeader("Set-Cookie", Host::makeCookie(Host::SESSION_COOKIE, "", 0));
    redirect(response, "/login.cgi");
}

const WebProgram LOGOUT = {"POST", makeMethodPage, handleLogout};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::LOGOUT);
}
