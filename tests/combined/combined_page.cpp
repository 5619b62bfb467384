// The combined page as a CGI program of its own, for the browser tests. No board has it: the
// program's dispatcher does not build that page.

#include "main/EFIBackupRestoreMain.h"
#include "pages/EFIBackupRestorePage.h"

#include <VeskLib/Gui/JudgeAuthority.h>

#include <memory>
#include <utility>

namespace {

using namespace VeskLib::Gui;

class CombinedMain : public EFIBackupRestoreMain {
public:
    int individualProc() override {
        guiCheckSession(true);
        messageMgr = new MessageMgr(messageSet);
        requester = new CGIRequester(sessionText.c_str());
        int displayMode = JudgeAuthority(&authority, 105, -1).getDisplayMode() != 0 ? 2 : 0;
        std::unique_ptr<CommonDefaultPage> page = std::make_unique<EFIBackupRestorePage>(
            *requester, *formInfo, *messageMgr, &displayMode);
        if (page->isError()) {
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
