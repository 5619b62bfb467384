// Tests that a board with damaged web content still answers with a complete page.

#include "platform/host/session/Session.h"
#include "tests/support/files.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace VeskLib::Test {

namespace {

using testing::HasSubstr;

// Replaces the content of a board's file; the destructor restores it.
class DamagedFile {
public:
    DamagedFile(const std::string& path, const std::string& content)
        : path(boardFile(path)), whole(readText(this->path)) {
        writeText(this->path, content);
    }
    DamagedFile(const DamagedFile&) = delete;
    DamagedFile& operator=(const DamagedFile&) = delete;
    ~DamagedFile() { writeText(path, whole); }

private:
    std::string path;
    std::string whole;
};

const char* const FRAME = "/usr/local/www/skel/skeleton_web_frame.txt";
const char* const LOGIN_BODY = "/usr/local/www/skel/skeleton_web_login.txt";
const char* const MENU_BODY = "/usr/local/www/skel/skeleton_web_menu.txt";
const char* const ERROR_PAGE = "/usr/local/www/skel/skeleton_error.txt";

class FailureTest : public WebTest {};

TEST_F(FailureTest, damagedSkeletonGivesErrorPage) {
    const Host::Session session = startSession("admin", false, "");
    for (const char* skeleton : {FRAME, MENU_BODY}) {
        const DamagedFile damage(skeleton, "<p>half a page</p>{{no such mark");
        const CGIResponse response = runWebProgram(MENU_PROGRAM, {.cookie = cookieOf(session)});
        expectPage(response, "500 Internal Server Error", "1105");
        EXPECT_THAT(response.body, testing::Not(HasSubstr("half a page")));
        EXPECT_THAT(trace(), HasSubstr(skeleton));
    }
}

TEST_F(FailureTest, damagedErrorPageIsReplacedByAPlainOne) {
    const DamagedFile login(LOGIN_BODY, "{{");
    const DamagedFile error(ERROR_PAGE, "{{");
    expectPage(runWebProgram(LOGIN_PROGRAM, {}), "500 Internal Server Error", "1105");
}

TEST_F(FailureTest, missingCatalogueStillGivesAPage) {
    const std::string catalogue = boardFile("/usr/local/share/catalogue");
    std::filesystem::rename(catalogue, catalogue + ".away");
    const CGIResponse response =
        runWebProgram(LOGIN_PROGRAM, {.cookie = "device=" + std::string(32, '0')});
    std::filesystem::rename(catalogue + ".away", catalogue);
    expectPage(response, "200 OK", "9100");
}

TEST_F(FailureTest, unwritableTraceChangesNothing) {
    std::filesystem::remove_all(boardFile("/var/log"));
    expectPage(runWebProgram(LOGIN_PROGRAM, {.method = "POST", .form = "user=a&password=b"}),
               "503 Service Unavailable", "2001");
}

}  // namespace

}  // namespace VeskLib::Test
