#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Efictl {

// A message of the board, in what does not depend on the language; docs/messages.md lists them.
struct Notice {
    std::string outcome;  // "done", "refused" or "unknown"; empty if the page does not tell
    int message = 0;      // its number; 0 for none
    int code = 0;
    std::string text;  // for people, with the partitions that it is about
};

// An installed partition, as the menu shows it.
struct PartitionRow {
    unsigned int number = 0;
    std::string name;
    std::string version;     // begins with "-" if the partition has no home board
    std::string lastBackup;  // ISO 8601, UTC; empty if unknown or never
    std::string lastRestore;
};

// The page after an upload: what the board has read in the file, and where it can go.
struct Selection {
    std::string stagedFile;  // the SHA-256 of the file's bytes
    unsigned int partition = 0;
    std::string partitionName;
    std::string version;
    std::vector<PartitionRow> targets;
};

// What efictl reads of a page of the board: every part that the page has.
struct BoardPage {
    std::string title;
    std::string boardName;
    bool isMenu = false;
    std::vector<Notice> notices;
    std::vector<PartitionRow> partitions;  // of the menu
    std::string downloadPath;              // of a finished backup
    std::optional<Selection> selection;

    // Returns the notice that matters most, null if there is none: "unknown" before "refused"
    // before "done".
    const Notice* notice() const;
};

// Reads a page. Throws Failure (UNREACHABLE) if it has too many elements. All texts are as the page
// has them: not yet fit for a terminal.
BoardPage readBoardPage(std::string_view page);

}  // namespace Efictl
