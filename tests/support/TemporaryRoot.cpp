#include "tests/support/TemporaryRoot.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace VeskLib::Test {

namespace {

namespace fs = std::filesystem;

void copyFiles(const std::vector<std::string>& folders, const fs::path& target) {
    fs::create_directories(target);
    for (const std::string& folder : folders) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            fs::copy(entry.path(), target / entry.path().filename());
        }
    }
}

}  // namespace

TemporaryRoot::TemporaryRoot(const std::vector<std::string>& catalogueFolders,
                             const std::vector<std::string>& skeletonFolders)
    : owner(::getpid()) {
    std::string name = (fs::temp_directory_path() / "board-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot create a folder for the board's root");
    }
    folder = name;
    // The back-end rejects folders that others may write to.
    ::umask(022);
    ::setenv("BOARD_ROOT", name.c_str(), 1);
    for (const char* part : {"var/lib/session", "var/log", "var/run", "var/tmp"}) {
        fs::create_directories(folder / part);
    }
    copyFiles(catalogueFolders, folder / "usr/local/share/catalogue");
    copyFiles(skeletonFolders, folder / "usr/local/www/skel");
}

TemporaryRoot::~TemporaryRoot() {
    if (owner == ::getpid()) {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
}

}  // namespace VeskLib::Test
