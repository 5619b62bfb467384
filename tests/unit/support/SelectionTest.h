#pragma once

#include "tests/unit/support/RestorePageTest.h"

#include <string>

namespace VeskLib::Test {

// Fixture for tests of the target selection, which a successful upload shows.
class SelectionTest : public RestorePageTest {
protected:
    SelectionTest() { post("1"); }

    // Returns the printed selection with these rows.
    static std::string selectionWith(const std::string& rows) {
        return "[/usr/local/www/skel/skeleton_efi_rstr_slct.txt"
               "\n|check_box=CheckBox(, , form_name, 2){box(check_box, , caption 1005, , false, "
               "false);}click(switchField())"
               "\n|date=" +
               text("2009-03-07") +
               "\n|filename=SelectFile(filename, , form_name, 70, 0)"
               "\n|form_action=" +
               text("/maintenance/efi_backup_restore.cgi") +
               "\n|hidden_functionID=" + hidden("functionID", "106") +
               "\n|hidden_procname=" + hidden("hidden_procname", "") +
               "\n|hidden_status=" + hidden("hidden_status", "2") +
               "\n|information=" + text("caption 1004") +
               "\n|install=Button(install, caption 499, form_name, 0, \"uploadFunction()\", false)"
               "\n|item_date=" +
               text("caption 973") + "\n|item_part_name=" + text("caption 394") +
               "\n|item_pid=" + text("caption 132") + "\n|item_version=" + text("caption 1359") +
               "\n|message=" + text("caption 1003") +
               "\n|message0=TextString(message 303/0, false, true, 6)"
               "\n|message1=TextString(message 293/0, false, true, 6)"
               "\n|onload_function=" +
               text("onLoadFunction()") + "\n|part_name=" + text("the file's") +
               "\n|pid=" + text("4") + "\n|restore=" + text("restore") + "\n|status=" + text("3") +
               "\n|table_pid=" + rows + "\n|tablepid=" + text("caption 131caption 132") +
               "\n|version=" + text("1.23 B") + "]";
    }

    static std::string row(const std::string& number, const std::string& name,
                           const std::string& version) {
        return "[/usr/local/www/skel/skeleton_efi_rstr_slct_tbl.txt"
               "\n|check_box=CheckBox(, , form_name, 2){box(pid" +
               number + ", " + number + ", , , false, false);}\n|part_name=" + text(name) +
               "\n|pid=" + text(number) + "\n|version=" + text(version) + "]";
    }

    static std::string absent(const std::string& partition) {
        return "putLog 0 lmsg 20020 [Home SB absent:PID" + partition + "]";
    }

    // The prefixes of calls that affect the staged file, and the calls expected after an upload:
    // either the file is only moved, or it is moved and then removed.
    const Calls stagedFileCalls = {"new LockedFile", "rename", "remove", "delete LockedFile"};
    const Calls onlyMoved = {"new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                             "rename /uploaded /board/var/tmp/restored_eficonfS1",
                             "delete LockedFile(/board/var/tmp/restored_eficonf.lock)"};
    const Calls movedAndRemoved = {"new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                   "rename /uploaded /board/var/tmp/restored_eficonfS1",
                                   "delete LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                   "new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                   "remove /board/var/tmp/restored_eficonfS1",
                                   "delete LockedFile(/board/var/tmp/restored_eficonf.lock)"};
};

}  // namespace VeskLib::Test
