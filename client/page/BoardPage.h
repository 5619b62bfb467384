#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Efictl {

// A message of the board; docs/messages.md lists them. Only the text depends on the language.
struct Notice {
    std::string outcome;  // "done", "refused", "unknown" or empty
    int message = 0;      // its number; 0 for none
    int code = 0;
    std::string text;  // for people, with the affected partitions
};

// An installed partition, as the menu shows it.
struct PartitionRow {
    unsigned int number = 0;
    std::string name;
    std::string version;     // starts with "-" if the partition has no home board
    std::string lastBackup;  // ISO 8601, UTC; empty if unknown or never
    std::string lastRestore;
};

// The page after an upload: the contents of the file as the board read it, and the partitions.
struct Selection {
    std::string stagedFile;  // the SHA-256 of the file's bytes
    unsigned int partition = 0;
    std::string partitionName;
    std::string version;
    std::vector<PartitionRow> targets;
};

// The parts of a page that efictl reads. Parts missing from the page are empty.
struct BoardPage {
    std::string title;
    std::string boardName;
    bool isMenu = false;
    std::vector<Notice> notices;
    std::vector<PartitionRow> partitions;  // of the menu
    std::string downloadPath;              // of a finished backup
    std::optional<Selection> selection;

    // Returns the most important notice, null if there is none: "unknown" before "refused" before
    // "done".
    const Notice* notice() const;
};

// Parses a page. Throws Failure (UNREACHABLE) if it has too many elements. The texts may contain
// any characters; use forTerminal() before printing them.
BoardPage readBoardPage(std::string_view page);

}  // namespace Efictl
