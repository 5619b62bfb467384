#include "main/EFIBackupRestoreMain.h"

// Catches nothing, because there is nothing left to answer with: an exception that arrives here
// ends the process abnormally, and the web server answers the request.
int main() {
    return VeskLib::Gui::EFIBackupRestoreMain().exec();
}
