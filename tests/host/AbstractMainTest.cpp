#include <VeskLib/Gui/AbstractMain.h>

#include "platform/host/base/platformException.h"
#include "platform/host/web/formPolicy.h"
#include "tests/host/TestMain.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"

#include <VeskLib/Gui/CommonDefaultPage.h>
#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/Gui/JudgeAuthority.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <new>

namespace VeskLib::Test {

using Host::Session;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const int FAILED = 1;

// Prints a page. Tests of failing requests expect its text to be absent.
int printPage(TestMain& /*main*/) {
    std::cout << "<p>THE PAGE</p>";
    return 0;
}

int printGuardedPage(TestMain& main) {
    main.guiCheckSession(true);
    return printPage(main);
}

class EmptyPage : public Gui::CommonDefaultPage {
public:
    EmptyPage(Gui::MessageMgr& messages, int* displayMode)
        : CommonDefaultPage(messages, displayMode, "/usr/local/www/skel/skeleton_error.txt") {
        makePage();
    }

protected:
    void makeDispPage() override {}
    void makeConfigPage() override {}
};

// Checks the user's right to function 106 and begins its page, as a dispatcher does.
void beginPage(TestMain& main) {
    main.requester = std::make_unique<Gui::CGIRequester>("").release();
    int displayMode = Gui::JudgeAuthority(&main.authority, 106, -1).getDisplayMode();
    Gui::MessageMgr messages(main.messageSet);
    const EmptyPage page(messages, &displayMode);
}

}  // namespace

class AbstractMainTest : public BoardTest {
protected:
    static std::vector<std::string> traceLines() {
        const std::string path = boardFile("/var/log/trace.log");
        return exists(path) ? linesOf(readText(path)) : std::vector<std::string>();
    }

    // Runs a request that must end in an error page and returns its response.
    static CGIResponse runFailing(const TestMain::Work& work, const Environment& environment) {
        const ChildResult result = runRequest(work, environment);
        EXPECT_EQ(result.exitStatus, FAILED) << result.errors;
        CGIResponse response =
            parseResponse(result.output, environment.contains("REQUEST_METHOD") &&
                                             environment.at("REQUEST_METHOD") == "HEAD");
        EXPECT_THAT(response.body, Not(HasSubstr("THE PAGE")));
        return response;
    }

    // Expects the login page in response to a request with this cookie value.
    static void expectLoginPage(const std::string& cookieValue) {
        const CGIResponse response = runFailing(printGuardedPage, getRequest(cookieValue));
        EXPECT_EQ(response.status, "403 Forbidden");
        EXPECT_THAT(textOf(response.body), HasSubstr("You are not logged in"));
        EXPECT_THAT(response.body, HasSubstr("href=\"/login.cgi\""));
    }

    static Session startSession() { return VeskLib::Test::startSession("user", false, ",105,"); }
};

TEST_F(AbstractMainTest, sendsPageAsResponse) {
    for (const Environment& request : {getRequest(), postRequest()}) {
        const ChildResult result = runRequest(printPage, request);
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
        EXPECT_EQ(parseResponse(result.output).status, "200 OK");
        EXPECT_EQ(parseResponse(result.output).body, "<p>THE PAGE</p>");
    }
    EXPECT_THAT(traceLines(), IsEmpty());
}

TEST_F(AbstractMainTest, answersHeadWithHeadersOnly) {
    Environment request = getRequest();
    request["REQUEST_METHOD"] = "HEAD";
    const CGIResponse response = parseResponse(runRequest(printPage, request).output, true);
    EXPECT_EQ(response.status, "200 OK");
    EXPECT_EQ(response.header("Content-Length"), "15");
}

TEST_F(AbstractMainTest, returnsResultOfWorkAsExitStatus) {
    for (const int status : {0, 1, 7}) {
        EXPECT_EQ(runRequest([status](TestMain&) { return status; }, getRequest()).exitStatus,
                  status);
    }
    EXPECT_EQ(runRequest([](TestMain&) { return -1; }, getRequest()).exitStatus, 255);
}

TEST_F(AbstractMainTest, doesWorkOnce) {
    const ChildResult result = runRequest(
        [](TestMain&) {
            std::cout << "once;";
            return 0;
        },
        getRequest());
    EXPECT_EQ(parseResponse(result.output).body, "once;");
}

TEST_F(AbstractMainTest, failsIfResponseCannotBeSent) {
    const ChildResult result = runInChild(
        [] {
            ::close(STDOUT_FILENO);
            return TestMain(printPage).exec();
        },
        {.environment = getRequest(), .input = {}});
    EXPECT_EQ(result.exitStatus, FAILED);
    EXPECT_EQ(result.signal, 0);
}

TEST_F(AbstractMainTest, rejectsOtherMethods) {
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "get", ""}) {
        Environment request = getRequest();
        request["REQUEST_METHOD"] = method;
        const CGIResponse response = runFailing(printPage, request);
        EXPECT_EQ(response.status, "405 Method Not Allowed") << method;
        EXPECT_EQ(response.header("Allow"), "GET, HEAD, POST");
        EXPECT_THAT(textOf(response.body), HasSubstr("does not accept this kind of request"));
    }
    EXPECT_EQ(runFailing(printPage, {}).status, "405 Method Not Allowed");
}

TEST_F(AbstractMainTest, rejectsCrossSitePost) {
    Environment request = postRequest(startSession().cookieValue());
    request["HTTP_ORIGIN"] = "http://evil";
    const CGIResponse response = runFailing(printPage, request);
    EXPECT_EQ(response.status, "403 Forbidden");
    EXPECT_EQ(response.header("Allow"), "");
    EXPECT_THAT(textOf(response.body), HasSubstr("another site"));
    request.erase("HTTP_ORIGIN");
    request["HTTP_SEC_FETCH_SITE"] = "cross-site";
    EXPECT_EQ(runFailing(printPage, request).status, "403 Forbidden");
}

TEST_F(AbstractMainTest, showsPageToLoggedInUser) {
    const ChildResult result =
        runRequest(printGuardedPage, getRequest(startSession().cookieValue()));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(parseResponse(result.output).body, HasSubstr("THE PAGE"));
}

TEST_F(AbstractMainTest, offersLoginWithoutSession) {
    expectLoginPage("");
    expectLoginPage("0123456789abcdef-" + std::string(32, '0'));
}

TEST_F(AbstractMainTest, rejectsMalformedCookies) {
    const std::string cookie = startSession().cookieValue();
    for (const std::string& text :
         {std::string("x"), cookie.substr(0, 16), cookie.substr(1), cookie + "0",
          std::string("../../etc/passwd"), std::string("<script>"), std::string(20000, 'a')}) {
        expectLoginPage(text);
    }
}

TEST_F(AbstractMainTest, rejectsForgedToken) {
    const Session session = startSession();
    expectLoginPage(session.identifier + "-" + std::string(32, '0'));
    expectLoginPage(session.identifier + "-" + startSession().token);
}

TEST_F(AbstractMainTest, rejectsExpiredSession) {
    const Session session = startSession();
    setAge(sessionFile(session.identifier), Host::SESSION_IDLE_SECONDS + 1);
    expectLoginPage(session.cookieValue());
}

TEST_F(AbstractMainTest, rejectsPostWithoutSession) {
    EXPECT_EQ(runFailing(printGuardedPage, postRequest()).status, "403 Forbidden");
}

TEST_F(AbstractMainTest, offersLoginIfSessionEndsDuringBody) {
    const Session session = startSession();
    const auto readForm = [&session](TestMain& main) {
        main.guiCheckSession(true);
        Host::endSession(session.identifier);
        std::string value;
        Gui::FormInfo().getFormData("hidden_status", value);
        return printPage(main);
    };
    const CGIResponse response = runFailing(readForm, postRequest(session.cookieValue()));
    EXPECT_EQ(response.status, "403 Forbidden");
    EXPECT_THAT(response.body, HasSubstr("href=\"/login.cgi\""));
}

TEST_F(AbstractMainTest, checksSessionFilesBeforePost) {
    const Session session = startSession();
    ASSERT_EQ(::symlink("/nowhere", stagingFile(session.identifier).c_str()), 0);
    const CGIResponse response = runFailing(printGuardedPage, postRequest(session.cookieValue()));
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(textOf(response.body), HasSubstr("[9021-1114]"));
    EXPECT_EQ(runRequest(printGuardedPage, getRequest(session.cookieValue())).exitStatus, 0);
}

TEST_F(AbstractMainTest, failsIfChangeCannotBeRecorded) {
    const Session session = startSession();
    writeText(stagingFile(session.identifier), "staged");
    ASSERT_EQ(::mkfifo(boardFile("/var/log/audit.log").c_str(), 0600), 0);
    const auto discard = [&session](TestMain& main) {
        main.guiCheckSession(true);
        std::remove(stagingFile(session.identifier).c_str());
        return printPage(main);
    };
    const CGIResponse response = runFailing(discard, postRequest(session.cookieValue()));
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(textOf(response.body), HasSubstr("[9020-1115]"));
}

TEST_F(AbstractMainTest, storesFileOnlyForUsersWhoMayRestore) {
    const auto showPolicy = [](TestMain& main) {
        main.guiCheckSession(false);
        std::cout << (Host::formPolicy().file == Host::FormPolicy::File::STORED);
        return 0;
    };
    const auto shown = [&showPolicy](const std::string& cookieValue) {
        return parseResponse(runRequest(showPolicy, postRequest(cookieValue)).output).body;
    };
    EXPECT_EQ(shown(VeskLib::Test::startSession("all", true, "").cookieValue()), "1");
    EXPECT_EQ(shown(VeskLib::Test::startSession("some", false, ",106,").cookieValue()), "1");
    EXPECT_EQ(shown(startSession().cookieValue()), "0");
    EXPECT_EQ(shown(""), "0");
}

TEST_F(AbstractMainTest, silentCheckGrantsNoRights) {
    const ChildResult result = runRequest(
        [](TestMain& main) {
            main.guiCheckSession(false);
            std::cout << main.authority.everyFunction << (main.authority.functions == nullptr);
            return 0;
        },
        getRequest("0123456789abcdef-" + std::string(32, '0')));
    EXPECT_EQ(parseResponse(result.output).body, "01");
}

TEST_F(AbstractMainTest, silentCheckLeavesRightsUnchanged) {
    const std::string functions = ",105,";
    const ChildResult result = runRequest(
        [&functions](TestMain& main) {
            main.authority = {.everyFunction = 7, .functions = &functions};
            main.guiCheckSession(false);
            std::cout << main.authority.everyFunction << *main.authority.functions;
            return 0;
        },
        getRequest());
    EXPECT_EQ(parseResponse(result.output).body, "7,105,");
}

TEST_F(AbstractMainTest, checkSetsRightsOfUser) {
    const Session some = VeskLib::Test::startSession("user", false, ",105,");
    const Session all = VeskLib::Test::startSession("admin", true, "");
    for (const bool showError : {true, false}) {
        const auto printRights = [showError](TestMain& main) {
            main.guiCheckSession(showError);
            std::cout << main.authority.everyFunction << *main.authority.functions;
            return 0;
        };
        EXPECT_EQ(
            parseResponse(runRequest(printRights, getRequest(some.cookieValue())).output).body,
            "0,105,");
        EXPECT_EQ(parseResponse(runRequest(printRights, getRequest(all.cookieValue())).output).body,
                  "1");
    }
}

TEST_F(AbstractMainTest, setsCookieAndLanguageBeforeWork) {
    Environment request = getRequest();
    request["HTTP_COOKIE"] = "language=ja; session=as it came";
    const ChildResult result = runRequest(
        [](TestMain& main) {
            std::cout << main.sessionText << '|' << main.messageSet;
            return 0;
        },
        request);
    EXPECT_EQ(parseResponse(result.output).body, "as it came|1");
}

TEST_F(AbstractMainTest, errorExitShowsTextsAndEndsRequest) {
    const CGIResponse response = runFailing(
        [](TestMain& main) {
            std::cout << "half of THE PAGE";
            main.errorExit("The title", "first<br>second");
            return 0;
        },
        getRequest());
    EXPECT_EQ(response.status, "400 Bad Request");
    EXPECT_THAT(response.body, HasSubstr("<h1>The title</h1>"));
    EXPECT_THAT(response.body, HasSubstr("<p>first</p><p>second</p>"));
    EXPECT_THAT(response.body, HasSubstr("<a class=\"button\" href=\"/\">"));
    EXPECT_THAT(response.body, Not(HasSubstr("/login.cgi")));
    EXPECT_THAT(traceLines(), IsEmpty());
}

TEST_F(AbstractMainTest, errorExitShowsCode) {
    const CGIResponse response = runFailing(
        [](TestMain& main) {
            main.errorExit("The message", 1539);
            return 0;
        },
        getRequest());
    EXPECT_THAT(response.body, HasSubstr("<p>The message [1539]</p>"));
}

TEST_F(AbstractMainTest, escapesHostileTextsInErrorPage) {
    const auto fail = [](const std::string& text) {
        return runFailing(
            [&text](TestMain& main) {
                main.errorExit(text, text);
                return 0;
            },
            getRequest());
    };
    const std::vector<std::string> tags = tagNamesOf(fail("harmless").body);
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const CGIResponse response = fail(text);
        EXPECT_EQ(tagNamesOf(response.body), tags);
        EXPECT_THAT(textOf(response.body), HasSubstr(text));
    }
}

TEST_F(AbstractMainTest, answersUnavailableAfterFailedBackEndRequest) {
    const CGIResponse response = runFailing(
        [](TestMain& main) {
            main.requester = std::make_unique<Gui::CGIRequester>("").release();
            VeskUi::PartitionInfoPacket packet;
            main.requester->getInfo(1, packet);
            main.errorExit("title", "message");
            return 0;
        },
        getRequest());
    EXPECT_EQ(response.status, "503 Service Unavailable");
}

TEST_F(AbstractMainTest, answersBadRequestWithoutBackEndRequest) {
    const CGIResponse response = runFailing(
        [](TestMain& main) {
            main.requester = std::make_unique<Gui::CGIRequester>("").release();
            main.errorExit("title", "message");
            return 0;
        },
        getRequest());
    EXPECT_EQ(response.status, "400 Bad Request");
}

TEST_F(AbstractMainTest, answersForbiddenWhereverRefusedRequestEnds) {
    const std::vector<TestMain::Work> ends = {
        [](TestMain& main) {
            main.errorExit("title", "message");
            return 0;
        },
        [](TestMain& main) {
            VeskUi::PartitionInfoPacket packet;
            main.requester->getInfo(1, packet);
            main.errorExit("title", "message");
            return 0;
        },
        [](TestMain&) -> int {
            throw Host::makePlatformException(Host::LOCK_NOT_OBTAINED, "LockedFile failed");
        },
        [](TestMain&) -> int { throw std::bad_alloc(); },
        printPage,
    };
    for (const TestMain::Work& end : ends) {
        const auto work = [&end](TestMain& main) {
            beginPage(main);
            return end(main);
        };
        for (const Environment& request : {getRequest(), postRequest()}) {
            EXPECT_EQ(parseResponse(runRequest(work, request).output).status, "403 Forbidden");
        }
    }
}

TEST_F(AbstractMainTest, keepsStatusOfErrorBeforePage) {
    const CGIResponse response = runFailing(
        [](TestMain& main) {
            Gui::JudgeAuthority(&main.authority, 106, -1).getDisplayMode();
            main.errorExit("title", "message");
            return 0;
        },
        getRequest());
    EXPECT_EQ(response.status, "400 Bad Request");
}

TEST_F(AbstractMainTest, keepsStatusOfAllowedUsersError) {
    const std::string functions = ",106,";
    const CGIResponse response = runFailing(
        [&functions](TestMain& main) {
            main.authority.functions = &functions;
            beginPage(main);
            main.errorExit("title", "message");
            return 0;
        },
        getRequest());
    EXPECT_EQ(response.status, "400 Bad Request");
}

TEST_F(AbstractMainTest, turnsUncaughtExceptionIntoErrorPageAndTraceLine) {
    const CGIResponse response = runFailing(
        [](TestMain&) -> int {
            std::cout << "half of THE PAGE";
            throw Host::makePlatformException(Host::LOCK_NOT_OBTAINED, "LockedFile failed");
        },
        getRequest());
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(response.body, testing::StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(textOf(response.body), HasSubstr("[9020-1101]"));
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr("level 0: LockedFile failed [1101]")));
}

TEST_F(AbstractMainTest, answersClientErrorToLargeOrMalformedRequest) {
    const auto fail = [](Host::PlatformError error) {
        return runFailing(
            [error](TestMain&) -> int { throw Host::makePlatformException(error, "refused"); },
            postRequest());
    };
    const CGIResponse tooLarge = fail(Host::REQUEST_TOO_LARGE);
    EXPECT_EQ(tooLarge.status, "413 Content Too Large");
    EXPECT_THAT(textOf(tooLarge.body), HasSubstr("larger than the board accepts"));
    const CGIResponse malformed = fail(Host::REQUEST_MALFORMED);
    EXPECT_EQ(malformed.status, "400 Bad Request");
    EXPECT_THAT(textOf(malformed.body), HasSubstr("damaged or incomplete"));
}

TEST_F(AbstractMainTest, turnsStandardExceptionIntoErrorPage) {
    const CGIResponse response = runFailing(
        [](TestMain&) -> int {
            std::cout << "half of THE PAGE";
            throw std::bad_alloc();
        },
        getRequest());
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(textOf(response.body), HasSubstr("internal error"));
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr("std::bad_alloc")));
}

TEST_F(AbstractMainTest, omitsErrorPageBodyForHead) {
    Environment request = getRequest();
    request["REQUEST_METHOD"] = "HEAD";
    EXPECT_EQ(runFailing(printGuardedPage, request).status, "403 Forbidden");
}

TEST_F(AbstractMainTest, deletesRequesterWithRequest) {
    const ChildResult result = runInChild(
        [] {
            class Noisy : public Gui::CGIRequester {
            public:
                Noisy() : CGIRequester("") {}
                ~Noisy() override { std::cerr << "deleted;"; }
            };
            {
                TestMain main([](TestMain& self) {
                    self.requester = std::make_unique<Noisy>().release();
                    self.errorExit("title", "message");
                    return 0;
                });
                main.exec();
            }
            std::cerr << "end";
            return 0;
        },
        {.environment = getRequest(), .input = {}});
    EXPECT_EQ(result.errors, "deleted;end");
}

}  // namespace VeskLib::Test
