#include "board/web/WebPage.h"
#include "board/web/WebProgram.h"
#include "board/web/activityRows.h"
#include "board/web/webCaptions.h"
#include "platform/host/web/ownPages.h"

namespace VeskLib::Board {

namespace {

const char* const ACTIVITY_SKELETON = "/usr/local/www/skel/skeleton_web_activity.txt";

class Rows : public Gui::HTMLComponent {
public:
    explicit Rows(LatestActions actions) : actions(std::move(actions)) {}

    void printHTML() const override { printActivityRows(actions); }
    bool isError() const override { return false; }

private:
    LatestActions actions;
};

void handleActivity(const Gui::FormInfo& /*form*/, Host::Response& response) {
    const Host::RequestSession* const user = findRequestSession();
    const std::string function = std::to_string(Host::ACTIVITY_FUNCTION);
    if (user == nullptr) {
        redirect(response, Host::loginPath(function));
        return;
    }
    const bool everybody = user->mayUse(Host::ACTIVITY_FUNCTION);
    LatestActions actions = readLatestActions(everybody ? "" : user->session.user);
    WebPage page(ACTIVITY_SKELETON, ACTIVITY_TITLE);
    page.putText("function", function);
    page.putText(everybody ? "everybody" : "own", "");
    if (actions.unreadable) {
        page.putText("unreadable", "");
    } else if (!actions.complete) {
        page.putText("cut", "");
    }
    if (actions.records.empty()) {
        page.putText("none", "");
    } else {
        page.put("rows", std::make_unique<Rows>(std::move(actions)));
    }
    page.print();
}

const WebProgram ACTIVITY = {"GET, HEAD", Host::makeMethodPage, handleActivity};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::ACTIVITY);
}
