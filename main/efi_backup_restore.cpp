#include "main/EFIBackupRestoreMain.h"

// Catches nothing, because no response can be sent any more: an exception that reaches main()
// terminates the process, and the web server answers the request.
int main() {
    return VeskLib::Gui::EFIBackupRestoreMain().exec();
}
