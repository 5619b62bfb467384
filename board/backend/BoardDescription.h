#pragma once

#include "platform/host/channel/BoardProperties.h"
#include "platform/host/channel/boardRecords.h"

#include <array>
#include <string>
#include <vector>

namespace VeskLib::Board {

// The contents of a board description file; docs/board-description.md describes the format.

struct SystemBoard {
    bool installed = false;
    bool home = false;  // its partition's home board
    std::string biosVersion = "-";
};

struct PartitionDescription {
    bool installed = false;
    bool running = false;
    std::string name;
    std::vector<unsigned char> nodeIds;
    std::vector<unsigned char> initialPayload;  // its configuration until one is restored
};

struct User {
    std::string name;
    std::string passwordHash;  // of crypt(3)
    Host::UserRights rights;
};

struct BoardDescription {
    using Boards = std::array<bool, Host::BOARDS_OF_A_KIND>;

    std::vector<PartitionDescription> partitions;  // one for each possible number
    std::array<SystemBoard, Host::BOARDS_OF_A_KIND> systemBoards;
    Boards ioBoards = {};  // true if installed
    Boards gspBoards = {};
    std::vector<User> users;
    std::string name;                    // shown to people
    std::vector<std::string> hostNames;  // as Host::normaliseHostName() returns them
    std::string syslogSocket;            // to which the audit log is also sent; may be empty

    // Returns null if there is no such user.
    const User* findUser(const std::string& name) const;

    bool isInstalled(unsigned int partition) const;

    // Returns the BIOS version of the partition's home board; "-" if it has none.
    std::string biosVersionOf(const PartitionDescription& partition) const;
};

// Reads a description. Throws std::runtime_error with "FILE:LINE:COLUMN: what is wrong", or without
// a position if the file cannot be read.
BoardDescription loadBoardDescription(const std::string& path);

}  // namespace VeskLib::Board
