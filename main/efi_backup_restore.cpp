#include "main/EFIBackupRestoreMain.h"

int main() {
    return VeskLib::Gui::EFIBackupRestoreMain().exec();
}
