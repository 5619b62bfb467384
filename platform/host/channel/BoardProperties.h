#pragma once

#include <map>
#include <string>
#include <vector>

namespace VeskLib::Host {

struct UserRights {
    bool everyFunction = false;
    std::string functions;  // function numbers, each between commas: ",105,106,"; may be empty

    bool allow(int function) const;
};

// What the back-end tells every process of the board through the file BOARD_PROPERTIES: one
// "name=value" line per property.
struct BoardProperties {
    unsigned int maxPartitions = 0;
    std::string name = {};                         // how people tell this board from others
    std::vector<std::string> hosts = {};           // the names that the board answers to
    std::map<std::string, UserRights> users = {};  // by name
    std::string syslogSocket = {};                 // empty: the audit log is not sent there
};

// A text with a line feed cannot be published and is left out.
std::vector<unsigned char> encode(const BoardProperties& properties);

// Unknown lines are passed over. Returns false, with `properties` unchanged, when the number of
// partitions is missing, or a value is malformed.
bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties);

// Reads the published properties. Without the file, and with one that is damaged, those of a board
// without anything. Throws PException (FILE_NOT_READABLE) when there is a file that cannot be read
// now.
BoardProperties readBoardProperties();

// The same, read once per process, so that everything in one request goes by the same.
const BoardProperties& boardProperties();

}  // namespace VeskLib::Host
