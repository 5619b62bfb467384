#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/Environment.h"
#include "platform/host/base/cookies.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/randomText.h"
#include "platform/host/base/requestOrigin.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "platform/host/web/ownPages.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/trace/VeskTrace.h>

namespace VeskLib::Board {

namespace {

const char* const LOGIN_SKELETON = "/usr/local/www/skel/skeleton_web_login.txt";

const char* const DEVICE_COOKIE = "device";
const std::size_t DEVICE_DIGITS = 32;
const long DEVICE_LIFE_SECONDS = 365L * 24 * 60 * 60;

// Without the typed name: people type their password there by mistake.
void traceRefusedLogin(int code) {
    const std::string text = "Login refused, code " + std::to_string(code) + ", asked for from " +
                             Host::readEnvironment("REMOTE_ADDR");
    trace::VeskTrace(1, 3, 2).putLog(0, text.c_str());
}

// Returns 0 and sets `answer`, or returns the error code of the back-end or the channel.
int askBackend(const Host::LoginRequest& login, Host::LoginAnswer& answer) {
    Host::RequestFrame request;
    request.kind = Host::RequestKind::LOGIN;
    request.payload = Host::encode(login);
    Host::ReplyFrame reply;
    Host::Channel channel;
    const int code = channel.exchange(request, reply);
    if (code != 0) {
        return code;
    }
    return Host::decode(reply.payload, answer) ? 0 : Host::CHANNEL_BAD_OBJECT;
}

// Returns the path to go to after a login: the function's page, or the menu.
std::string targetOf(const std::string& function) {
    const std::string page = Host::pageOfFunction(function);
    return page.empty() ? "/" : page;
}

// Returns the number of the requested function from the form; "" for the menu.
std::string functionOf(const Gui::FormInfo& form) {
    std::string function;
    form.getFormData("functionID", function);
    return Host::pageOfFunction(function).empty() ? "" : function;
}

void putFunction(WebPage& page, const std::string& function) {
    if (!function.empty()) {
        page.putText("function", function);
    }
}

// Prints the form again, with the typed name but without the password.
void printRefusedForm(const std::string& user, const std::string& function, int caption,
                      int detail) {
    WebPage page(LOGIN_SKELETON, LOGIN_TITLE);
    putFunction(page, function);
    page.putText("user", user);
    page.putNotice("message", caption, detail);
    page.print();
}

void recordLogin(const Host::Session& session) {
    Host::AuditEvent event = Host::makeAuditEvent("login");
    event.user = session.user;
    event.session = session.identifier;
    Host::record(event);
}

// Without the typed name: people type their password there by mistake.
void recordRefusedLogin(int code) {
    Host::AuditEvent event;
    event.event = "login_failed";
    event.address = Host::clientAddress();
    event.code = code;
    Host::recordRefusal(event);
}

// Always starts a new session, because somebody else might know the one that the browser has. That
// one is ended once the new one exists.
void startNewSession(const std::string& user, const std::string& function,
                     Host::Response& response) {
    const Host::RequestSession* const former = findRequestSession();
    const Host::Session session = Host::startSession(user);
    try {
        if (former != nullptr && !Host::endSession(former->session.identifier)) {
            throw Host::makePlatformException(Host::SESSION_NOT_ENDED,
                                              "The former session cannot be ended");
        }
        Host::endExpiredSessions();
        recordLogin(session);
        response.addHeader("Set-Cookie",
                           Host::makeCookie(Host::SESSION_COOKIE, session.cookieValue()));
        redirect(response, targetOf(function));
    } catch (...) {
        // The browser has not received the session.
        Host::endSession(session.identifier);
        throw;
    }
}

bool isDevice(const std::string& text) {
    return text.size() == DEVICE_DIGITS &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

// Returns the name that this browser was given; empty if it has none.
std::string readDevice() {
    const std::string device = Host::readCookie(Host::cookieName(DEVICE_COOKIE));
    return isDevice(device) ? device : "";
}

void keepDevice(const std::string& device, Host::Response& response) {
    if (isDevice(device)) {
        response.addHeader("Set-Cookie",
                           Host::makeCookie(DEVICE_COOKIE, device, DEVICE_LIFE_SECONDS));
    }
}

// Names a new browser, so that the back-end can distinguish it from a program that guesses
// passwords without loading the form.
void nameBrowser(Host::Response& response) {
    if (readDevice().empty()) {
        keepDevice(Host::makeRandomText(DEVICE_DIGITS / 2), response);
    }
}

void handleLogin(const Gui::FormInfo& form, Host::Response& response) {
    if (!Host::isPost()) {
        nameBrowser(response);
        WebPage page(LOGIN_SKELETON, LOGIN_TITLE);
        putFunction(page, Host::wantedFunction());
        page.print();
        return;
    }
    // Logs and histories store addresses, so one that contains a password must not work.
    if (!Host::readEnvironment("QUERY_STRING").empty()) {
        throw makeRefusal(400, MALFORMED_REQUEST);
    }
    std::string user;
    std::string password;
    form.getFormData("user", user);
    form.getFormData("password", password);
    const std::string function = functionOf(form);

    Host::LoginAnswer answer;
    const int code = askBackend({user, password, Host::clientAddress(), readDevice()}, answer);
    if (code == 0) {
        startNewSession(user, function, response);
        keepDevice(answer.device, response);
        return;
    }
    traceRefusedLogin(code);
    recordRefusedLogin(code);
    if (code == Host::BACKEND_LOGIN_REFUSED) {
        response.setStatus(403);
        printRefusedForm(user, function, LOGIN_REFUSED, 0);
    } else if (code == Host::BACKEND_LOGIN_TOO_SOON) {
        response.setStatus(429);
        printRefusedForm(user, function, LOGIN_TOO_SOON, 0);
    } else {
        response.setStatus(503);
        printRefusedForm(user, function, BACKEND_SILENT, code);
    }
}

const WebProgram LOGIN = {"GET, HEAD, POST", Host::makeMethodPage, handleLogin};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::LOGIN);
}
