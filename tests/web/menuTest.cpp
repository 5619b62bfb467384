#include "platform/host/text/Catalogue.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <map>

namespace VeskLib::Test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const BACKUP_LINK = "/maintenance/efi_backup_restore.cgi?functionID=105";
const char* const RESTORE_LINK = "/maintenance/efi_backup_restore.cgi?functionID=106";
const int NOT_AVAILABLE = 9160;

class MenuTest : public WebTest {
protected:
    static CGIResponse run(const WebRequest& request) {
        return runWebProgram(MENU_PROGRAM, request);
    }

    static CGIResponse showTo(const Host::Session& session) {
        return run({.cookie = cookieOf(session)});
    }

    // Returns the links to the program's screens.
    static std::vector<std::string> linksOf(const CGIResponse& response) {
        std::vector<std::string> links;
        for (const Tag& link : tagsOf(response.body, "a")) {
            if (link.attributes.at("href").starts_with("/maintenance/")) {
                links.push_back(link.attributes.at("href"));
            }
        }
        return links;
    }

    // Returns how often the page says that a function is not available.
    static int countUnavailable(const CGIResponse& response) {
        const std::string text = textOf(response.body);
        const std::string words = caption(NOT_AVAILABLE);
        int count = 0;
        for (std::size_t at = text.find(words); at != std::string::npos;
             at = text.find(words, at + 1)) {
            ++count;
        }
        return count;
    }
};

TEST_F(MenuTest, anonymousUserIsSentToLogin) {
    const Host::Session expired = startSession("admin", true, "");
    expire(expired);
    const Host::Session real = startSession("admin", true, "");
    for (const std::string& cookie :
         {std::string(), std::string("session="), std::string("session=nonsense"),
          "session=" + real.identifier, cookieOf(real) + "0", cookieOf(expired),
          "session=" + real.identifier + "-00000000000000000000000000000000"}) {
        expectRedirection(run({.cookie = cookie}), "/login.cgi");
    }
}

TEST_F(MenuTest, showsUserAndBothFunctions) {
    const CGIResponse response = showTo(startSession("admin", false, ",105,106,"));
    expectPage(response, "200 OK", "admin");
    EXPECT_THAT(linksOf(response), ElementsAre(BACKUP_LINK, RESTORE_LINK));
    EXPECT_EQ(countUnavailable(response), 0);
}

TEST_F(MenuTest, userWithEveryFunctionGetsBothLinks) {
    const CGIResponse response = showTo(startSession("root", true, ""));
    EXPECT_THAT(linksOf(response), ElementsAre(BACKUP_LINK, RESTORE_LINK));
}

TEST_F(MenuTest, missingFunctionIsNamedAndNotLinked) {
    const CGIResponse one = showTo(startSession("operator", false, ",105,"));
    EXPECT_THAT(linksOf(one), ElementsAre(BACKUP_LINK));
    EXPECT_EQ(countUnavailable(one), 1);
    const CGIResponse none = showTo(startSession("viewer", false, ""));
    EXPECT_THAT(linksOf(none), IsEmpty());
    EXPECT_EQ(countUnavailable(none), 2);
    EXPECT_THAT(textOf(none.body), HasSubstr(caption(9156)));
    EXPECT_THAT(textOf(none.body), HasSubstr(caption(9158)));
}

TEST_F(MenuTest, functionNumberIsComparedWhole) {
    const CGIResponse response = showTo(startSession("viewer", false, ",1105,10,1060,"));
    EXPECT_THAT(linksOf(response), IsEmpty());
}

TEST_F(MenuTest, everyUserGetsLinksToActivity) {
    for (const char* functions : {"", ",105,106,110,"}) {
        const CGIResponse response = showTo(startSession("user", false, functions));
        int count = 0;
        for (const Tag& link : tagsOf(response.body, "a")) {
            count += link.attributes.at("href") == "/activity.cgi" ? 1 : 0;
        }
        EXPECT_EQ(count, 2);  // in the header and in the menu
    }
}

TEST_F(MenuTest, choosingLanguageReturnsToThePage) {
    const auto choose = [](const std::string& function, const std::string& cookie) {
        return run({.method = "POST",
                    .form = "language=ja&functionID=" + function,
                    .cookie = cookie})
            .header("Location");
    };
    const std::string cookie = cookieOf(startSession("admin", false, ""));
    EXPECT_EQ(choose("110", cookie), "/activity.cgi");
    EXPECT_EQ(choose("105", ""), "/login.cgi?functionID=105");
    EXPECT_EQ(choose("%2f%2fevil.example", cookie), "/");
    EXPECT_EQ(choose("%2f%2fevil.example", ""), "/");
}

TEST_F(MenuTest, logoutIsAPost) {
    const CGIResponse response = showTo(startSession("admin", false, ""));
    std::map<std::string, std::string> methods;
    for (const Tag& form : tagsOf(response.body, "form")) {
        methods[form.attributes.at("action")] = form.attributes.at("method");
    }
    EXPECT_EQ(methods["/logout.cgi"], "post");
    EXPECT_EQ(methods["/index.cgi"], "post");
}

TEST_F(MenuTest, userNameAddsNoMarkup) {
    const std::vector<std::string> plain =
        tagNamesOf(showTo(startSession("admin", false, "")).body);
    for (const std::string& name : printableTexts()) {
        const CGIResponse response = showTo(startSession(name, false, ""));
        EXPECT_EQ(tagNamesOf(response.body), plain) << name;
        EXPECT_THAT(textOf(response.body), HasSubstr(name));
    }
}

TEST_F(MenuTest, languageIsKeptInACookie) {
    for (const auto& [tag, name] : Host::languages()) {
        const CGIResponse response =
            run({.method = "POST", .form = std::string("language=") + tag});
        expectRedirection(response, "/");
        EXPECT_EQ(response.header("Set-Cookie"),
                  std::string("language=") + tag +
                      "; Path=/; Max-Age=31536000; HttpOnly; SameSite=Strict");
    }
}

TEST_F(MenuTest, unknownLanguageIsRefused) {
    for (const char* form :
         {"", "language=", "language=xx", "language=EN", "language=ja%0d%0aX: y", "tongue=en"}) {
        const CGIResponse response = run({.method = "POST", .form = form});
        expectPage(response, "400 Bad Request", "1107");
    }
}

TEST_F(MenuTest, linkDoesNotChangeLanguage) {
    const Host::Session session = startSession("admin", false, "");
    const CGIResponse response = run({.query = "language=ja", .cookie = cookieOf(session)});
    expectPage(response, "200 OK", caption(9155));
}

TEST_F(MenuTest, cookieLanguageWinsOverBrowserLanguage) {
    const Host::Session session = startSession("admin", false, "");
    const std::string japanese = Host::findText(1, Host::TextSet::CAPTIONS, 9155);
    ASSERT_NE(japanese, caption(9155));
    const CGIResponse byCookie = run(
        {.cookie = cookieOf(session) + "; language=ja", .more = {{"HTTP_ACCEPT_LANGUAGE", "en"}}});
    expectPage(byCookie, "200 OK", japanese);
    EXPECT_EQ(tagsOf(byCookie.body, "html").at(0).attributes.at("lang"), "ja");
    const CGIResponse byBrowser =
        run({.cookie = cookieOf(session), .more = {{"HTTP_ACCEPT_LANGUAGE", "ja-JP,ja;q=0.9,en"}}});
    expectPage(byBrowser, "200 OK", japanese);
}

TEST_F(MenuTest, offersEveryLanguageAndMarksTheChosenOne) {
    const Host::Session session = startSession("admin", false, "");
    for (const auto& [language, ownName] : Host::languages()) {
        const CGIResponse response = run({.cookie = cookieOf(session) + "; language=" + language});
        std::string expected;
        for (const auto& [tag, name] : Host::languages()) {
            const std::string current = tag == language ? " aria-current=\"true\"" : "";
            expected += std::string("<button type=\"submit\" name=\"language\" value=\"") + tag +
                        "\" lang=\"" + tag + "\"" + current + ">" + name + "</button>\n";
        }
        EXPECT_THAT(response.body, HasSubstr("</legend>\n" + expected + "</fieldset>"));
    }
}

}  // namespace

}  // namespace VeskLib::Test
