// Reads a posted form as a program of the board does and prints how many bytes its file has, how
// many of them are stored, and how much memory that took at most, in KiB.

#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/PException.h>

#include <sys/stat.h>

#include <fstream>
#include <iostream>
#include <string>

namespace {

// The process's own, which is not that of the process that started it.
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
