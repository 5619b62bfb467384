#pragma once

#include "platform/host/channel/BoardProperties.h"
#include "platform/host/channel/boardRecords.h"

#include <array>
#include <string>
#include <vector>

namespace VeskLib::Board {

// What a board description file says; docs/board-description.md gives its format.

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

    std::vector<PartitionDescription> partitions;  // one for each number that is possible
    std::array<SystemBoard, Host::BOARDS_OF_A_KIND> systemBoards;
    Boards ioBoards = {};  // installed ones
    Boards gspBoards = {};
    std::vector<User> users;
    std::string name;                    // how people tell this board from others
    std::vector<std::string> hostNames;  // as Host::normaliseHostName() gives them
    std::string syslogSocket;            // where the audit log is sent as well; may be empty

    // Null when there is no such user.
    const User* findUser(const std::string& name) const;

    bool isInstalled(unsigned int partition) const;

    // The version that a partition runs: that of its home board, "-" when it has none.
    std::string biosVersionOf(const PartitionDescription& partition) const;
};

// Reads a description. Throws std::runtime_error with "FILE:LINE:COLUMN: what is wrong", or without
// a position when the file cannot be read.
BoardDescription loadBoardDescription(const std::string& path);

}  // namespace VeskLib::Board
