#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/randomText.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/trace/VeskTrace.h>

namespace VeskLib::Board {

namespace {

const char* const LOGIN_SKELETON = "/usr/local/www/skel/skeleton_web_login.txt";

const std::size_t DEVICE_DIGITS = 32;
const int DEVICE_LIFE_SECONDS = 365 * 24 * 60 * 60;

// Without the typed name: people type their password there by mistake.
void traceRefusedLogin(int code) {
    const std::string text = "Login refused, code " + std::to_string(code) + ", asked for from " +
                             Host::readEnvironment("REMOTE_ADDR");
    trace::VeskTrace(1, 3, 2).putLog(0, text.c_str());
}

// 0 with `rights` filled, or the error code of the back-end or of the channel to it.
int askRights(const Host::LoginRequest& login, Host::LoginAnswer& rights) {
    Host::RequestFrame request;
    request.kind = Host::RequestKind::LOGIN;
    request.payload = Host::encode(login);
    Host::ReplyFrame reply;
    Host::Channel channel;
    const int code = channel.exchange(request, reply);
    if (code != 0) {
        return code;
    }
    return Host::decode(reply.payload, rights) ? 0 : Host::CHANNEL_BAD_OBJECT;
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
void startNewSession(const std::string& user, const Host::LoginAnswer& rights,
                     Host::Response& response) {
    Host::Session former;
    const bool replaces = findRequestSession(former);
    const Host::Session session = Host::startSession(user, rights.everyFunction, rights.functions);
    try {
        if (replaces && !Host::endSession(former.identifier)) {
            throw Host::makePlatformException(Host::SESSION_NOT_ENDED,
                                              "The former session cannot be ended");
        }
        Host::endExpiredSessions();
        response.addHeader("Set-Cookie", std::string(Host::SESSION_COOKIE) + "=" +
                                             session.cookieValue() +
                                             "; Path=/; HttpOnly; SameSite=Strict");
        redirect(response, "/");
    } catch (...) {
        // The browser never learns of the session.
        Host::endSession(session.identifier);
        throw;
    }
}

bool isEncrypted() {
    return Host::readEnvironment("HTTPS") == "on";
}

// A cookie of this name is only taken from an encrypted connection to this very host.
std::string deviceCookie() {
    return isEncrypted() ? "__Host-device" : "device";
}

bool isDevice(const std::string& text) {
    return text.size() == DEVICE_DIGITS &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

// What this browser was named; empty when it has no name.
std::string readDevice() {
    const std::string device = Host::readCookie(deviceCookie());
    return isDevice(device) ? device : "";
}

void keepDevice(const std::string& device, Host::Response& response) {
    if (isDevice(device)) {
        response.addHeader("Set-Cookie",
                           deviceCookie() + "=" + device +
                               "; Path=/; Max-Age=" + std::to_string(DEVICE_LIFE_SECONDS) +
                               "; HttpOnly; SameSite=Strict" + (isEncrypted() ? "; Secure" : ""));
    }
}

// Lets the back-end tell a browser from a program that guesses without having seen the form.
void nameBrowser(Host::Response& response) {
    if (readDevice().empty()) {
        keepDevice(Host::makeRandomText(DEVICE_DIGITS / 2), response);
    }
}

void handleLogin(const Gui::FormInfo& form, Host::Response& response) {
    if (!Host::isPost()) {
        nameBrowser(response);
        WebPage(LOGIN_SKELETON, LOGIN_TITLE).print();
        return;
    }
    // Addresses are kept in logs and histories; one with a password in it must not work.
    if (!Host::readEnvironment("QUERY_STRING").empty()) {
        throw makeRefusal(400, MALFORMED_REQUEST);
    }
    std::string user;
    std::string password;
    form.getFormData("user", user);
    form.getFormData("password", password);

    Host::LoginAnswer rights;
    const int code =
        askRights({user, password, Host::readEnvironment("REMOTE_ADDR"), readDevice()}, rights);
    if (code == 0) {
        startNewSession(user, rights, response);
        keepDevice(rights.device, response);
        return;
    }
    traceRefusedLogin(code);
    if (code == Host::BACKEND_LOGIN_REFUSED) {
        response.setStatus(403);
        printRefusedForm(user, LOGIN_REFUSED, 0);
    } else if (code == Host::BACKEND_LOGIN_TOO_SOON) {
        response.setStatus(429);
        printRefusedForm(user, LOGIN_TOO_SOON, 0);
    } else {
        response.setStatus(503);
        printRefusedForm(user, BACKEND_SILENT, code);
    }
}

const WebProgram LOGIN = {"GET, HEAD, POST", Host::makeMethodPage, handleLogin};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::LOGIN);
}
