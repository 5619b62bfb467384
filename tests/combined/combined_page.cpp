// A CGI program that shows the combined page, for the browser tests. No board has it, because the
// program's dispatcher never builds that page.

#include "main/EFIBackupRestoreMain.h"
#include "pages/EFIBackupRestorePage.h"

#include <VeskLib/Gui/JudgeAuthority.h>

#include <memory>
#include <string>
#include <utility>

namespace {

using namespace VeskLib::Gui;

class CombinedMain : public EFIBackupRestoreMain {
public:
    int individualProc() override {
        guiCheckSession(true);
        messageMgr = new MessageMgr(messageSet);
        requester = new CGIRequester(sessionText.c_str());
        // This field of the query simulates a board on which errorExit() returns.
        std::string ignored;
        const bool errorPageReturns = formInfo->getFormData("error_page_returns", ignored);
        int displayMode = JudgeAuthority(&authority, 105, -1).getDisplayMode() != 0 ? 2 : 0;
        std::unique_ptr<CommonDefaultPage> page = std::make_unique<EFIBackupRestorePage>(
            *requester, *formInfo, *messageMgr, &displayMode);
        if (page->isError() && !errorPageReturns) {
            errorExit(title, page->getMessage());
        }
        printShell(std::move(page), "M-BACKUP_EFI_CONF");
        return 0;
    }
};

}  // namespace

int main() {
    return CombinedMain().exec();
}
