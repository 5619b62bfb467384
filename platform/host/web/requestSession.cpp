#include "platform/host/web/requestSession.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/cookies.h"
#include "platform/host/base/requestOrigin.h"
#include "platform/host/web/errorPage.h"
#include "platform/host/web/pageHeader.h"

#include <VeskLib/PException.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace VeskLib::Host {

namespace {

std::optional<RequestSession> current;

bool isOfLivingSession(const std::string& cookieValue) {
    try {
        Session session;
        return findSession(cookieValue, session);
    } catch (const PException&) {
        return false;  // occurs again when the session is checked, and is reported then
    }
}

}  // namespace

bool RequestSession::mayUse(int function) const {
    return rights.allow(function);
}

std::string requestCookie() {
    const std::vector<std::string> values = readCookies(cookieName(SESSION_COOKIE));
    if (values.empty()) {
        return {};
    }
    const auto living = values.size() == 1
                            ? values.begin()
                            : std::find_if(values.begin(), values.end(), isOfLivingSession);
    return living == values.end() ? values.front() : *living;
}

const RequestSession* findRequestSession(const std::string& cookieValue) {
    RequestSession found;
    current.reset();
    unshareSession();
    if (!findSession(cookieValue, found.session)) {
        return nullptr;
    }
    const auto& users = boardProperties().users;
    const auto user = users.find(found.session.user);
    if (user == users.end()) {
        // Without any users, the board description is not known.
        if (!users.empty()) {
            endSessionBecause(found.session, "user");
        }
        return nullptr;
    }
    found.rights = user->second;
    current = std::move(found);
    shareBoardName();
    shareSession(current->session);
    return &*current;
}

const RequestSession* requestSession() {
    return current ? &*current : nullptr;
}

void requireLivingSession() {
    Session session;
    if (current && !findSessionByIdentifier(current->session.identifier, session)) {
        throw makeLoginPage();
    }
}

AuditEvent makeAuditEvent(const std::string& name) {
    AuditEvent event;
    event.event = name;
    event.address = clientAddress();
    event.request = requestIdentifier();
    if (current) {
        event.user = current->session.user;
        event.session = current->session.identifier;
    }
    return event;
}

}  // namespace VeskLib::Host
