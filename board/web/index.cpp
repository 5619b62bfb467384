#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"
#include "platform/host/base/cookies.h"
#include "platform/host/base/platformException.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/web/requestChecks.h"

namespace VeskLib::Board {

namespace {

const char* const MENU_SKELETON = "/usr/local/www/skel/skeleton_web_menu.txt";

const long LANGUAGE_LIFE_SECONDS = 365L * 24 * 60 * 60;

bool isLanguage(const std::string& tag) {
    for (int language = 0; language < Host::LANGUAGE_COUNT; ++language) {
        if (tag == Host::languageTag(language)) {
            return true;
        }
    }
    return false;
}

// Needs no session: a language is chosen on the login page, too.
void chooseLanguage(const Gui::FormInfo& form, Host::Response& response) {
    std::string tag;
    if (!form.getFormData("language", tag) || !isLanguage(tag)) {
        throw Host::makePlatformException(Host::REQUEST_MALFORMED, "No language of the board");
    }
    response.addHeader("Set-Cookie",
                       Host::makeCookie(Host::LANGUAGE_COOKIE, tag, LANGUAGE_LIFE_SECONDS));
    redirect(response, "/");
}

void printMenu(const Host::RequestSession& user) {
    WebPage page(MENU_SKELETON, MENU_TITLE);
    page.putText("account", user.session.user);
    page.putText(user.mayUse(Host::BACKUP_FUNCTION) ? "may_backup" : "may_not_backup", "");
    page.putText(user.mayUse(Host::RESTORE_FUNCTION) ? "may_restore" : "may_not_restore", "");
    page.print();
}

void handleMenu(const Gui::FormInfo& form, Host::Response& response) {
    if (Host::isPost()) {
        chooseLanguage(form, response);
    } else if (const Host::RequestSession* user = findRequestSession()) {
        printMenu(*user);
    } else {
        redirect(response, "/login.cgi");
    }
}

const WebProgram MENU = {"GET, HEAD, POST", Host::makeMethodPage, handleMenu};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::MENU);
}
