#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"

namespace VeskLib::Board {

namespace {

void handleLogout(const Gui::FormInfo& /*form*/, Host::Response& response) {
    Host::Session session;
    if (findRequestSession(session)) {
        Host::endSession(session.identifier);
    }
    response.addHeader("Set-Cookie", std::string(Host::SESSION_COOKIE) +
                                         "=; Path=/; Max-Age=0; HttpOnly; SameSite=Strict");
    redirect(response, "/login.cgi");
}

}  // namespace

}  // namespace VeskLib::Board

int main() {
    using namespace VeskLib::Board;
    return runWebProgram({"POST", LOGOUT_NEEDS_BUTTON, handleLogout});
}
