#pragma once

#include "pages/EFIRestorePage.h"
#include "tests/unit/support/UploadPageTest.h"

#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

// Fixture for tests of EFIRestorePage, on a board with one partition.
class RestorePageTest : public UploadPageTest {
protected:
    using Partition = VeskUi::PartitionInfoPacket::Partition;

    RestorePageTest() {
        script.setPartitions({{true, "name", {}}});
        script.setBoards({}, {});
        script.setVersions({});
    }

    std::unique_ptr<Gui::EFIRestorePage> makePage() {
        return std::make_unique<Gui::EFIRestorePage>(requester, formInfo, messageMgr, &displayMode);
    }

    static std::string text(const std::string& value) {
        return "TextString(" + value + ", false, false, 6)";
    }

    static std::string hidden(const std::string& name, const std::string& value) {
        return "HiddenField(" + name + ", " + value + ", form_name)";
    }

    // Returns the printed upload form with this "hidden_status". `leftovers` adds the components
    // that remain from an abandoned target selection, "information" and "status"; the upload form's
    // skeleton has no place for them.
    static std::string uploadForm(const std::string& status, bool leftovers = false) {
        return "[/usr/local/www/skel/skeleton_efi_rstr.txt"
               "\n|filename=SelectFile(filename, , form_name, 70, 0)"
               "\n|form_action=" +
               text("/maintenance/efi_backup_restore.cgi") +
               "\n|hidden_functionID=" + hidden("functionID", "106") +
               "\n|hidden_procname=" + hidden("hidden_procname", "") +
               "\n|hidden_status=" + hidden("hidden_status", status) +
               (leftovers ? "\n|information=" + text("caption 1004") : "") +
               "\n|message=TextString(caption 1002, false, true, 6)"
               "\n|message0=TextString(message 354/0, false, true, 6)"
               "\n|onload_function=" +
               text("onLoadFunction()") + (leftovers ? "\n|status=" + text("3") : "") + "]";
    }

    // The output of a page with an error, for each skeleton.
    const std::string emptyUploadForm = "[/usr/local/www/skel/skeleton_efi_rstr.txt]";
    const std::string emptySelection = "[/usr/local/www/skel/skeleton_efi_rstr_slct.txt]";
};

}  // namespace VeskLib::Test
