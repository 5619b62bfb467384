#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace VeskLib::Test {

// A board's root in a folder of its own: the folders of an installed board, its catalogues and its
// skeletons. The environment variable BOARD_ROOT names it from construction on. The process that
// made it removes it; its children leave it alone.
class TemporaryRoot {
public:
    // Copies every file of these folders.
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
