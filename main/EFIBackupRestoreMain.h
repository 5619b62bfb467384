#pragma once

#include <VeskLib/Gui/AbstractConfigMain.h>
#include <VeskLib/Gui/CommonDefaultPage.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// One request to the screen "Backup/Restore BIOS Configuration".
class EFIBackupRestoreMain : public AbstractConfigMain {
public:
    EFIBackupRestoreMain();

    // Builds the page of the request's function number and prints it. 0 after a printed page, -1
    // after an unknown function number.
    int individualProc() override;

protected:
    // Prints `page` inside the page shell and deletes both.
    void printShell(std::unique_ptr<CommonDefaultPage> page, const char* frameIdentifier);

private:
    // 2 when the user may use the function, 0 when not.
    int judgeDisplayMode();

    // Ends the request: its function number is missing or unknown.
    void refuseScreenInformation();
};

}  // namespace VeskLib::Gui
