#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"
#include "tests/web/FakeBackend.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <map>

namespace VeskLib::Test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const int LOGIN_REFUSED = 9104;
const int BACKEND_SILENT = 9105;
const int LOGIN_TOO_SOON = 9107;

const std::string DEVICE = "0123456789abcdef0123456789abcdef";

Host::ReplyFrame accept(const Host::LoginAnswer& answer) {
    return {.errorCode = 0, .payload = Host::encode(answer)};
}

Host::ReplyFrame refuse(unsigned int code) {
    return {.errorCode = code, .payload = {}};
}

class LoginTest : public WebTest {
protected:
    static CGIResponse run(const WebRequest& request) {
        return runWebProgram(LOGIN_PROGRAM, request);
    }

    static CGIResponse post(const std::string& form, const std::string& cookie = "") {
        return run({.method = "POST", .form = form, .cookie = cookie});
    }

    // Logs in as a user whom the back-end accepts.
    static CGIResponse logIn(const std::string& cookie = "") {
        FakeBackend backend(accept({}));
        return post("user=admin&password=admin", cookie);
    }

    // Returns the response's Set-Cookie headers, in order.
    static std::vector<std::string> newCookies(const CGIResponse& response) {
        std::vector<std::string> cookies;
        for (const auto& [name, value] : response.headers) {
            if (name == "Set-Cookie") {
                cookies.push_back(value);
            }
        }
        return cookies;
    }

    // Returns the device in the login request that the back-end received.
    static std::string askedDevice(FakeBackend& backend) {
        Host::LoginRequest login;
        EXPECT_TRUE(Host::decode(backend.takeRequest()->payload, login));
        return login.device;
    }

    // Returns the new value of the session cookie.
    static std::string newCookie(const CGIResponse& response) {
        const std::string header = response.header("Set-Cookie");
        EXPECT_THAT(header, MatchesRegex("session=[0-9a-f]{16}-[0-9a-f]{32}; Path=/; HttpOnly; "
                                         "SameSite=Strict"));
        const std::size_t start = header.find('=') + 1;
        return header.substr(start, header.find(';') - start);
    }

    static std::string valueOf(const CGIResponse& response, const std::string& field) {
        for (const Tag& input : tagsOf(response.body, "input")) {
            if (input.attributes.at("name") == field) {
                const auto value = input.attributes.find("value");
                return value == input.attributes.end() ? "" : value->second;
            }
        }
        ADD_FAILURE() << "no field " << field;
        return {};
    }
};

TEST_F(LoginTest, getShowsAnEmptyForm) {
    const CGIResponse response = run({.cookie = "device=" + DEVICE});
    expectPage(response, "200 OK", caption(9101));
    EXPECT_EQ(valueOf(response, "user"), "");
    EXPECT_EQ(valueOf(response, "password"), "");
    const std::vector<Tag> forms = tagsOf(response.body, "form");
    ASSERT_THAT(forms, Not(IsEmpty()));
    EXPECT_EQ(forms[0].attributes.at("action"), "/login.cgi");
    EXPECT_EQ(forms[0].attributes.at("method"), "post");
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

// The name distinguishes the browser from a program that guesses passwords.
TEST_F(LoginTest, getNamesAnUnnamedBrowser) {
    const std::vector<std::string> cookies = newCookies(run({}));
    EXPECT_THAT(cookies, ElementsAre(MatchesRegex("device=[0-9a-f]{32}; Path=/; Max-Age=31536000; "
                                                  "HttpOnly; SameSite=Strict")));
    EXPECT_NE(newCookies(run({.cookie = "device=x"})), cookies);
}

TEST_F(LoginTest, headAnswersAsGetWithoutTheBody) {
    EXPECT_EQ(run({.method = "HEAD"}).header("Content-Length"), run({}).header("Content-Length"));
}

TEST_F(LoginTest, acceptedUserGetsASession) {
    FakeBackend backend(accept({}));
    const CGIResponse response = post("user=admin&password=secret");
    expectRedirection(response, "/");
    Host::Session session;
    ASSERT_TRUE(Host::findSession(newCookie(response), session));
    EXPECT_EQ(session.user, "admin");
}

TEST_F(LoginTest, leadsToRequestedPage) {
    const std::string cookie = "device=" + DEVICE;
    const CGIResponse form = run({.query = "functionID=106", .cookie = cookie});
    expectPage(form, "200 OK", caption(9101));
    EXPECT_EQ(valueOf(form, "functionID"), "106");
    for (const auto& [function, page] : std::map<std::string, std::string>{
             {"105", "/maintenance/efi_backup_restore.cgi?functionID=105"},
             {"106", "/maintenance/efi_backup_restore.cgi?functionID=106"},
             {"110", "/activity.cgi"}}) {
        FakeBackend backend(accept({}));
        expectRedirection(post("user=admin&password=admin&functionID=" + function), page);
    }
}

TEST_F(LoginTest, leadsOnlyToPagesOfTheBoard) {
    for (const char* target :
         {"", "1", "1050", "105%0d%0aX:+y", "%2f%2fevil.example", "https:%2f%2fevil.example",
          "%2flogout.cgi", "105%26x=y", "%5c%5cevil.example", "105%00"}) {
        FakeBackend backend(accept({}));
        expectRedirection(post(std::string("user=admin&password=admin&functionID=") + target), "/");
        const CGIResponse form =
            run({.query = std::string("functionID=") + target, .cookie = "device=" + DEVICE});
        EXPECT_THAT(form.body, Not(HasSubstr("functionID"))) << target;
    }
}

TEST_F(LoginTest, refusedLoginKeepsRequestedPage) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    EXPECT_EQ(valueOf(post("user=admin&password=x&functionID=105"), "functionID"), "105");
}

TEST_F(LoginTest, sendsTypedTextUnchangedToBackEnd) {
    FakeBackend backend(accept({}));
    post("password=p%26%3D%2B+%25%22&user=J%C3%BCrgen+%3Cb%3E");
    const std::optional<Host::RequestFrame> request = backend.takeRequest();
    ASSERT_TRUE(request);
    EXPECT_EQ(request->kind, Host::RequestKind::LOGIN);
    EXPECT_EQ(request->sessionIdentifier, "");
    Host::LoginRequest login;
    ASSERT_TRUE(Host::decode(request->payload, login));
    EXPECT_EQ(login.user, "J\xC3\xBCrgen <b>");
    EXPECT_EQ(login.password, "p&=+ %\"");
}

TEST_F(LoginTest, refusedLoginShowsNameButNoPassword) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    const CGIResponse response = post("user=admin&password=topsecret");
    expectPage(response, "403 Forbidden", caption(LOGIN_REFUSED));
    EXPECT_EQ(valueOf(response, "user"), "admin");
    EXPECT_EQ(valueOf(response, "password"), "");
    EXPECT_THAT(response.body, Not(HasSubstr("topsecret")));
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

TEST_F(LoginTest, sendsClientAddressToBackEnd) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_TOO_SOON));
    const CGIResponse response = run({.method = "POST",
                                      .form = "user=admin&password=x",
                                      .more = {{"REMOTE_ADDR", "192.0.2.1"}}});
    expectPage(response, "429 Too Many Requests", caption(LOGIN_TOO_SOON));
    EXPECT_EQ(valueOf(response, "user"), "admin");
    EXPECT_THAT(sessionFiles(), IsEmpty());
    Host::LoginRequest login;
    ASSERT_TRUE(Host::decode(backend.takeRequest()->payload, login));
    EXPECT_EQ(login.origin, "192.0.2.1");
}

TEST_F(LoginTest, rejectsCredentialsInQuery) {
    for (const char* form : {"", "user=admin&password=admin"}) {
        FakeBackend backend(accept({}));
        const CGIResponse response =
            run({.method = "POST", .query = "user=admin&password=admin", .form = form});
        expectPage(response, "400 Bad Request", caption(9207));
        EXPECT_FALSE(backend.takeRequest());
    }
    EXPECT_EQ(run({.query = "user=admin&password=admin"}).status, "200 OK");
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

TEST_F(LoginTest, setsDeviceCookieFromBackEnd) {
    FakeBackend backend(accept({.device = DEVICE}));
    EXPECT_THAT(
        newCookies(post("user=admin&password=admin")),
        ElementsAre(StartsWith("session="),
                    "device=" + DEVICE + "; Path=/; Max-Age=31536000; HttpOnly; SameSite=Strict"));
}

TEST_F(LoginTest, encryptedConnectionHasItsOwnDeviceCookie) {
    FakeBackend backend(accept({.device = DEVICE}));
    const CGIResponse response = run({.method = "POST",
                                      .form = "user=admin&password=admin",
                                      .cookie = "device=" + std::string(32, 'a'),
                                      .more = {{"HTTPS", "on"}}});
    EXPECT_THAT(newCookies(response),
                ElementsAre(HasSubstr("session="),
                            "__Host-device=" + DEVICE +
                                "; Path=/; Max-Age=31536000; HttpOnly; SameSite=Strict; Secure"));
    EXPECT_EQ(askedDevice(backend), "");
    FakeBackend again(accept({}));
    run({.method = "POST",
         .form = "user=admin&password=admin",
         .cookie = "__Host-device=" + DEVICE,
         .more = {{"HTTPS", "on"}}});
    EXPECT_EQ(askedDevice(again), DEVICE);
}

TEST_F(LoginTest, knownBrowserKeepsItsName) {
    FakeBackend backend(accept({}));
    const CGIResponse response = post("user=admin&password=admin", "device=" + DEVICE);
    EXPECT_THAT(newCookies(response), ElementsAre(StartsWith("session=")));
    EXPECT_EQ(askedDevice(backend), DEVICE);
}

TEST_F(LoginTest, ignoresMalformedDeviceCookie) {
    for (const std::string& device : {std::string("x"), DEVICE + "0", std::string(32, 'A'),
                                      std::string(32, '-'), std::string(60000, 'a')}) {
        FakeBackend backend(accept({}));
        post("user=admin&password=admin", "device=" + device);
        EXPECT_EQ(askedDevice(backend), "") << device.substr(0, 40);
    }
}

// A damaged answer from the back-end must not reach the header.
TEST_F(LoginTest, setsNoCookieFromMalformedDevice) {
    for (const char* device :
         {"x; Domain=example", "a2378c31bfb1", "0123456789abcdef0123456789abcde\n"}) {
        FakeBackend backend(accept({.device = device}));
        EXPECT_THAT(newCookies(post("user=admin&password=admin")),
                    ElementsAre(StartsWith("session=")));
    }
}

TEST_F(LoginTest, refusedLoginSetsNoCookie) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    EXPECT_THAT(newCookies(post("user=admin&password=x", "device=" + DEVICE)), IsEmpty());
}

TEST_F(LoginTest, refusedLoginIsTracedWithoutTypedText) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    post("user=typedname&password=topsecret");
    EXPECT_THAT(trace(), HasSubstr("Login refused, code 1607"));
    EXPECT_THAT(trace(), Not(HasSubstr("typedname")));
    EXPECT_THAT(trace(), Not(HasSubstr("topsecret")));
}

TEST_F(LoginTest, typedNameAddsNoMarkup) {
    std::string plainTags;
    for (const std::string& name : printableTexts()) {
        FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
        std::string encoded;
        for (const char character : name) {
            char code[sizeof "%FF"];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(character));
            encoded += code;
        }
        const CGIResponse response = post("user=" + encoded + "&password=x");
        std::string tags;
        for (const std::string& tag : tagNamesOf(response.body)) {
            tags += tag + " ";
        }
        plainTags = plainTags.empty() ? tags : plainTags;
        EXPECT_EQ(tags, plainTags) << name;
        EXPECT_EQ(valueOf(response, "user"), name);
    }
}

TEST_F(LoginTest, missingFieldsCountAsEmpty) {
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    expectPage(post(""), "403 Forbidden", caption(LOGIN_REFUSED));
    const std::optional<Host::RequestFrame> request = backend.takeRequest();
    ASSERT_TRUE(request);
    Host::LoginRequest login;
    ASSERT_TRUE(Host::decode(request->payload, login));
    EXPECT_EQ(login.user + login.password, "");
}

TEST_F(LoginTest, absentBackEndIsReported) {
    const CGIResponse response = post("user=admin&password=topsecret");
    expectPage(response, "503 Service Unavailable", caption(BACKEND_SILENT) + " [9105-2001]");
    EXPECT_EQ(valueOf(response, "user"), "admin");
    EXPECT_THAT(response.body, Not(HasSubstr("topsecret")));
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

TEST_F(LoginTest, closedConnectionIsReported) {
    FakeBackend backend(std::nullopt);
    expectPage(post("user=admin&password=admin"), "503 Service Unavailable",
               caption(BACKEND_SILENT) + " [9105-2003]");
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

TEST_F(LoginTest, malformedAnswerIsReported) {
    FakeBackend backend(Host::ReplyFrame{.errorCode = 0, .payload = {1, 0, 9, ','}});
    expectPage(post("user=admin&password=admin"), "503 Service Unavailable",
               caption(BACKEND_SILENT) + " [9105-2005]");
    EXPECT_THAT(sessionFiles(), IsEmpty());
}

TEST_F(LoginTest, otherErrorsOfTheBackEndDoNotBlameThePassword) {
    FakeBackend backend(refuse(Host::BACKEND_NOT_STORED));
    expectPage(post("user=admin&password=admin"), "503 Service Unavailable",
               caption(BACKEND_SILENT) + " [9105-1603]");
}

TEST_F(LoginTest, loginEndsPresentedSession) {
    const Host::Session former = startSession("other", false, ",106,");
    const std::string backup = boardFile("/var/tmp/efi_backup" + former.identifier);
    writeText(backup, "bytes");
    const CGIResponse response = logIn(cookieOf(former));
    EXPECT_NE(newCookie(response), former.cookieValue());
    Host::Session session;
    EXPECT_FALSE(Host::findSession(former.cookieValue(), session));
    EXPECT_FALSE(exists(backup));
    EXPECT_THAT(sessionFiles(), SizeIs(1));
}

TEST_F(LoginTest, forgedCookieIsNotAdopted) {
    const std::string forged = "0123456789abcdef-0123456789abcdef0123456789abcdef";
    EXPECT_NE(newCookie(logIn("session=" + forged)), forged);
    Host::Session session;
    EXPECT_FALSE(Host::findSession(forged, session));
}

TEST_F(LoginTest, forgedTokenEndsNoSessionAtLogin) {
    const Host::Session other = startSession("other", false, "");
    logIn("session=" + other.identifier + "-00000000000000000000000000000000");
    Host::Session session;
    EXPECT_TRUE(Host::findSession(other.cookieValue(), session));
}

TEST_F(LoginTest, refusedLoginKeepsPresentedSession) {
    const Host::Session former = startSession("other", false, "");
    FakeBackend backend(refuse(Host::BACKEND_LOGIN_REFUSED));
    post("user=admin&password=x", cookieOf(former));
    Host::Session session;
    EXPECT_TRUE(Host::findSession(former.cookieValue(), session));
}

TEST_F(LoginTest, everyLoginGetsANewSession) {
    EXPECT_NE(newCookie(logIn()).substr(0, 16), newCookie(logIn()).substr(0, 16));
    EXPECT_THAT(sessionFiles(), SizeIs(2));
}

TEST_F(LoginTest, loginRemovesExpiredSessions) {
    const Host::Session forgotten = startSession("other", false, "");
    expire(forgotten);
    logIn();
    EXPECT_FALSE(exists(boardFile("/var/lib/session/" + forgotten.identifier)));
}

TEST_F(LoginTest, loginFailsIfSessionCannotBeStored) {
    std::filesystem::remove_all(boardFile("/var/lib/session"));
    writeText(boardFile("/var/lib/session"), "a file in the way");
    expectPage(logIn(), "500 Internal Server Error", "1106");
    EXPECT_THAT(trace(), HasSubstr("1106"));
    std::filesystem::remove(boardFile("/var/lib/session"));
}

}  // namespace

}  // namespace VeskLib::Test
