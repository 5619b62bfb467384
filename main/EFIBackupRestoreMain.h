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

    // Builds and prints the page for the request's function number. Returns 0 after a page was
    // printed, -1 if the function number is unknown.
    int individualProc() override;

protected:
    // Prints `page` inside the page shell and deletes both.
    void printShell(std::unique_ptr<CommonDefaultPage> page, const char* frameIdentifier);

private:
    // Returns 2 if the user may use the function, otherwise 0.
    int judgeDisplayMode();

    // Ends the request with the error page for a missing or unknown function number.
    void refuseScreenInformation();
};

}  // namespace VeskLib::Gui
