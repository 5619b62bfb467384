#pragma once

#include "pages/EFIBackupRestorePage.h"
#include "tests/unit/support/UploadPageTest.h"

#include <memory>
#include <string>

namespace VeskLib::Test {

// Fixture for tests of EFIBackupRestorePage. The scripted board supports backups too.
class CombinedPageTest : public UploadPageTest {
protected:
    CombinedPageTest() { script.replies[0x020100A3].errorCode = 0; }

    std::unique_ptr<Gui::EFIBackupRestorePage> makePage() {
        return std::make_unique<Gui::EFIBackupRestorePage>(requester, formInfo, messageMgr,
                                                           &displayMode);
    }

    // Returns the printed form with this "hidden_status". A backup adds `link`, an upload adds
    // `question`, and a field "message" adds `notice`.
    static std::string form(const std::string& status,
                            const std::string& onLoad = "onLoadFunction()",
                            const std::string& link = "", const std::string& question = "",
                            const std::string& notice = "") {
        return "[/usr/local/www/skel/skeleton_efi_backup.txt"
               "\n|download=Button(download, caption 971, form_name, 0, \"backupFunction()\", "
               "false)"
               "\n|filename=SelectFile(filename, , form_name, 70, 0)" +
               (link.empty() ? "" : "\n|filepath=TextString(" + link + ", false, true, 6)") +
               "\n|form_action=TextString(/maintenance/efi_backup_restore.cgi, false, false, 6)"
               "\n|hidden_functionID=HiddenField(functionID, 105, form_name)"
               "\n|hidden_procname=HiddenField(hidden_procname, , form_name)"
               "\n|hidden_status=HiddenField(hidden_status, " +
               status + ", form_name)" +
               (question.empty() ? ""
                                 : "\n|information=TextString(" + question + ", false, true, 6)") +
               "\n|install=Button(install, caption 499, form_name, 0, \"uploadFunction()\", false)"
               "\n|item_download=TextString(caption 1356, false, true, 6)"
               "\n|item_title=TextString(caption 986, false, false, 6)"
               "\n|message=TextString(caption 1357, false, true, 6)"
               "\n|message0=TextString(message 354/0, false, true, 6)" +
               (notice.empty() ? "" : "\n|notice=" + notice) + "\n|onload_function=TextString(" +
               onLoad + ", false, false, 6)]";
    }

    const std::string emptyPage = "[/usr/local/www/skel/skeleton_efi_backup.txt]";
    const Calls removal = {"new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                           "remove /board/var/tmp/restored_eficonfS1",
                           "delete LockedFile(/board/var/tmp/restored_eficonf.lock)"};
    const Calls stagedFileCalls = {"new LockedFile", "rename", "remove", "delete LockedFile"};
};

}  // namespace VeskLib::Test
