#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/dailyRound.h"
#include "board/web/webCaptions.h"
#include "platform/host/base/cookies.h"
#include "platform/host/base/platformException.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/web/ownPages.h"
#include "platform/host/web/requestChecks.h"

#include <algorithm>

namespace VeskLib::Board {

namespace {

const char* const MENU_SKELETON = "/usr/local/www/skel/skeleton_web_menu.txt";

const long LANGUAGE_LIFE_SECONDS = 365L * 24 * 60 * 60;

bool isLanguage(const std::string& tag) {
    return std::ranges::find(Host::languages(), tag, &Host::Language::tag) !=
           Host::languages().end();
}

// Needs no session, because the login page also has a choice of languages.
void chooseLanguage(const Gui::FormInfo& form, Host::Response& response) {
    std::string tag;
    if (!form.getFormData("language", tag) || !isLanguage(tag)) {
        throw Host::makePlatformException(Host::REQUEST_MALFORMED, "Not a language of the board");
    }
    response.addHeader("Set-Cookie",
                       Host::makeCookie(Host::LANGUAGE_COOKIE, tag, LANGUAGE_LIFE_SECONDS));
    // Returns to the page with the choice.
    std::string function;
    form.getFormData("functionID", function);
    if (Host::pageOfFunction(function).empty()) {
        redirect(response, "/");
    } else if (findRequestSession() == nullptr) {
        redirect(response, Host::loginPath(function));
    } else {
        redirect(response, Host::pageOfFunction(function));
    }
}

class RoundRows : public Gui::HTMLComponent {
public:
    RoundRows(std::vector<RoundRow> rows, bool mayBackUp, bool mayRestore)
        : rows(std::move(rows)), mayBackUp(mayBackUp), mayRestore(mayRestore) {}

    void printHTML() const override { printRoundRows(rows, mayBackUp, mayRestore); }
    bool isError() const override { return false; }

private:
    std::vector<RoundRow> rows;
    bool mayBackUp;
    bool mayRestore;
};

// Adds the installed partitions for users who may back up or restore. If the back-end does not
// answer, the menu says so but is otherwise complete.
void putRound(WebPage& page, const Host::RequestSession& user) {
    const bool mayBackUp = user.mayUse(Host::BACKUP_FUNCTION);
    const bool mayRestore = user.mayUse(Host::RESTORE_FUNCTION);
    if (!mayBackUp && !mayRestore) {
        return;
    }
    page.putText("round", "");
    std::vector<RoundRow> rows;
    const int code = askForPartitions(rows);
    if (code != 0) {
        page.putNotice("silent", ROUND_SILENT, code);
        return;
    }
    if (rows.empty()) {
        page.putText("no_partitions", "");
        return;
    }
    if (!findLastTimes(rows)) {
        page.putText("cut", "");
    }
    page.put("rows", std::make_unique<RoundRows>(std::move(rows), mayBackUp, mayRestore));
}

void printMenu(const Host::RequestSession& user) {
    WebPage page(MENU_SKELETON, MENU_TITLE);
    putRound(page, user);
    page.putText(user.mayUse(Host::ACTIVITY_FUNCTION) ? "everybody" : "own", "");
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
