#include "main/EFIBackupRestoreMain.h"

#include "html/MetaTag.h"
#include "html/componentMaps.h"
#include "pages/EFIBackupPage.h"
#include "pages/EFIRestorePage.h"
#include "pages/catalogueNumbers.h"
#include "pages/functionNumbers.h"
#include "pages/libraryText.h"

#include <VeskLib/Gui/HTMLPage.h>
#include <VeskLib/Gui/JsFunction.h>
#include <VeskLib/Gui/JudgeAuthority.h>
#include <VeskLib/Gui/TextString.h>

#include <cstdlib>
#include <utility>

namespace VeskLib::Gui {

namespace {

const char* const TITLE = "Backup/Restore BIOS Configuration";
const int WHOLE_SERVER = -1;

}  // namespace

EFIBackupRestoreMain::EFIBackupRestoreMain() : AbstractConfigMain(TITLE) {
}

// Also works if the platform's errorExit() returns: a missing function number then reads as 0 and
// is refused, and a page with an error is printed.
int EFIBackupRestoreMain::individualProc() {
    guiCheckSession(true);
    messageMgr = new MessageMgr(messageSet);
    requester = new CGIRequester(std::string(sessionText).c_str());

    std::string functionNumber;
    if (!formInfo->getFormData("functionID", functionNumber)) {
        refuseScreenInformation();
    }
    functionId = std::atoi(functionNumber.c_str());
    int displayMode = judgeDisplayMode();

    std::unique_ptr<CommonDefaultPage> page;
    const char* frameIdentifier = nullptr;
    switch (functionId) {
        case Functions::BACKUP:
            page =
                std::make_unique<EFIBackupPage>(*requester, *formInfo, *messageMgr, &displayMode);
            frameIdentifier = "M-BACKUP_EFI_CONF";
            break;
        case Functions::RESTORE:
            page =
                std::make_unique<EFIRestorePage>(*requester, *formInfo, *messageMgr, &displayMode);
            frameIdentifier = "M-RESTOR_EFI_CONF";
            break;
        default:
            trace.putLog(
                0, libraryText(LibraryTexts::UNKNOWN_FUNCTION, "Illegal query string", functionId)
                       .c_str());
            refuseScreenInformation();
            return -1;
    }
    if (page->isError()) {
        errorExit(title, page->getMessage());
    }
    printShell(std::move(page), frameIdentifier);
    return 0;
}

int EFIBackupRestoreMain::judgeDisplayMode() {
    JudgeAuthority judge(&authority, functionId, WHOLE_SERVER);
    // Exactly 2 or 0, because the pages test for 2.
    const bool allowed = judge.preCheckDisplayMode(*requester) == 1 || judge.getDisplayMode() != 0;
    return allowed ? 2 : 0;
}

void EFIBackupRestoreMain::refuseScreenInformation() {
    errorExit("Error", libraryText(LibraryTexts::UNAVAILABLE, "the screen information"));
}

void EFIBackupRestoreMain::printShell(std::unique_ptr<CommonDefaultPage> page,
                                      const char* frameIdentifier) {
    const CommonDefaultPage& body = *page;
    HTMLPage shell(1);
    insertComponent(shell.componentMap, "body", std::move(page));
    insertComponent(shell.componentMap, "css", std::make_unique<TextString>("/default.css"));
    insertComponent(shell.componentMap, "title", std::make_unique<TextString>(TITLE));
    auto onLoad = std::make_unique<JsFunction>("onLoadFunction()");
    onLoad->addFunction("initialize()");
    if (body.isAlert()) {
        onLoad->addAlertFunction(body.getMessage());
    }
    insertComponent(shell.componentMap, "java_script", std::move(onLoad));
    insertComponent(
        shell.componentMap, "meta_frameid",
        std::make_unique<MetaTag>("FRAME-ID", std::string(frameIdentifier) + "-C-00", "", ""));
    shell.generator->printHTML();
}

}  // namespace VeskLib::Gui
