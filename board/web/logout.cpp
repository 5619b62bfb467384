#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"

namespace VeskLib::Board {

namespace {

Host::ErrorPage makeMethodPage() {
    return makeRefusal(405, LOGOUT_NEEDS_BUTTON);
}

void handleLogout(const Gui::FormInfo& /*form*/, Host::Response& response) {
    Host::Session session;
    if (findRequestSession(session)) {
        Host::endSession(session.identifier);
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
