#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/askUserRights.h"
#include "board/web/webCaptions.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/trace/VeskTrace.h>

namespace VeskLib::Board {

namespace {

const char* const LOGIN_SKELETON = "/usr/local/www/skel/skeleton_web_login.txt";

// Enough of a name to recognise it; the rest of an attacker's text is not worth the log's space.
const std::size_t TRACED_NAME_LENGTH = 64;

void traceRefusedLogin(const std::string& user, int code) {
    const std::string text = "Login refused, code " + std::to_string(code) + ", user name \"" +
                             user.substr(0, TRACED_NAME_LENGTH) + "\"";
    trace::VeskTrace(1, 3, 2).putLog(0, text.c_str());
}

// The form again, with the typed name and without the password.
void printRefusedForm(const std::string& user, int caption, int detail) {
    WebPage page(LOGIN_SKELETON, LOGIN_TITLE);
    page.putText("user", user);
    page.putCaption("message", caption, detail);
    page.print();
}

// A session that the browser already has is never adopted, so that nobody can be logged in to a
// session that another knows; it ends when the new one stands.
void startNewSession(const std::string& user, const UserRights& rights, Host::Response& response) {
    Host::Session former;
    const bool replaces = findRequestSession(former);
    const Host::Session session =
        Host::startSession(user, rights.everyFunction, rights.functions);
    if (replaces) {
        Host::endSession(former.identifier);
    }
    Host::endExpiredSessions();
    response.addHeader("Set-Cookie", std::string(Host::SESSION_COOKIE) + "=" +
                                         session.cookieValue() +
                                         "; Path=/; HttpOnly; SameSite=Strict");
    redirect(response, "/");
}

void handleLogin(const Gui::FormInfo& form, Host::Response& response) {
    if (!Host::isPost()) {
        WebPage(LOGIN_SKELETON, LOGIN_TITLE).print();
        return;
    }
    std::string user;
    std::string password;
    form.getFormData("user", user);
    form.getFormData("password", password);

    UserRights rights;
    const int code = askUserRights(user, password, rights);
    if (code == 0) {
        startNewSession(user, rights, response);
        return;
    }
    traceRefusedLogin(user, code);
    if (code == LOGIN_NOT_ACCEPTED) {
        response.setStatus(403);
        printRefusedForm(user, LOGIN_REFUSED, 0);
    } else {
        response.setStatus(503);
        printRefusedForm(user, BACKEND_SILENT, code);
    }
}

}  // namespace

}  // namespace VeskLib::Board

int main() {
    using namespace VeskLib::Board;
    return runWebProgram({"GET, HEAD, POST", WRONG_METHOD, handleLogin});
}
