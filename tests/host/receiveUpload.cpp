// Reads a posted form as a program of the board does. Prints the size of its file in bytes, how
// many bytes are stored (-1 if none), and the peak memory use in KiB.

#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/PException.h>

#include <sys/stat.h>

#include <fstream>
#include <iostream>
#include <string>

namespace {

// Returns the peak memory use of this process in KiB, without that of the process that started it.
std::string readPeakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "VmHWM:" && status >> word) {
            return word;
        }
    }
    return "unknown";
}

}  // namespace

int main() {
    try {
        const VeskLib::Gui::FormInfo form;
        const std::string path = form.getUploadFilePath();
        struct stat status = {};
        const bool stored = ::stat(path.c_str(), &status) == 0;
        std::cout << form.getUploadFileSize() << ' ' << (stored ? status.st_size : -1) << ' '
                  << readPeakMemory() << '\n';
        return 0;
    } catch (const VeskLib::PException& exception) {
        std::cerr << exception.getExceptionDetail() << '\n';
        return 1;
    }
}
