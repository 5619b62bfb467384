#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/DescriptionTable.h"

#include <set>
#include <string>

namespace VeskLib::Board {

// Converts a parsed board description into a BoardDescription. For one use only.
class DescriptionReader {
public:
    // Throws std::runtime_error like loadBoardDescription().
    BoardDescription read(DescriptionTable& table);

private:
    void readBoards(DescriptionTable& table);
    void readSystemBoard(DescriptionTable& table);
    void readPartition(DescriptionTable& table);
    void readHostNames(DescriptionTable& table);
    void readPayload(DescriptionTable& table, unsigned int number);
    void readUser(DescriptionTable& table);

    BoardDescription description;
    std::set<std::string> userNames;
};

}  // namespace VeskLib::Board
