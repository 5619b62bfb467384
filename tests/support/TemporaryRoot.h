#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace VeskLib::Test {

// A board's root in a new temporary folder: the folders of an installed board, its catalogues and
// its skeletons. The constructor sets BOARD_ROOT to it and the umask to 022. The destructor removes
// it, but only in the process that created it.
class TemporaryRoot {
public:
    // Copies all files of these folders. Throws if the root cannot be created.
    TemporaryRoot(const std::vector<std::string>& catalogueFolders,
                  const std::vector<std::string>& skeletonFolders);
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;
    ~TemporaryRoot();

private:
    std::filesystem::path folder;
    pid_t owner;
};

}  // namespace VeskLib::Test
