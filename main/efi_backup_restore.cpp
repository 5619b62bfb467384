#include "main/EFIBackupRestoreMain.h"

#include <cstdlib>
#include <exception>

int main() {
    try {
        return VeskLib::Gui::EFIBackupRestoreMain().exec();
    } catch (const std::exception&) {
        // Not even the main object could be made. The web server answers in its place.
        return EXIT_FAILURE;
    }
}
