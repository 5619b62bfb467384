#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"
#include "platform/host/base/platformException.h"

namespace VeskLib::Board {

namespace {

Host::ErrorPage makeMethodPage() {
    return makeRefusal(405, LOGOUT_NEEDS_BUTTON);
}

void handleLogout(const Gui::FormInfo& /*form*/, Host::Response& response) {
    Host::Session session;
    // Nobody is told to be logged out whose session lives on.
    if (findRequestSession(session) && !Host::endSession(session.identifier)) {
        throw Host::makePlatformException(Host::SESSION_NOT_ENDED, "The session cannot be ended");
    }
    response.addHeader("Set-Cookie", std::string(Host::SESSION_COOKIE) +
                                         "=; Path=/; Max-Age=0; HttpOnly; SameSite=Strict");
    redirect(response, "/login.cgi");
}

const WebProgram LOGOUT = {"POST", makeMethodPage, handleLogout};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::LOGOUT);
}
