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

// The properties of the board that the back-end publishes to all processes in the file
// BOARD_PROPERTIES, which has one "name=value" line per property.
struct BoardProperties {
    unsigned int maxPartitions = 0;
    std::string name = {};                         // the name of the board for its users
    std::vector<std::string> hosts = {};           // the host names that the board answers to
    std::map<std::string, UserRights> users = {};  // by name
    std::string syslogSocket = {};                 // empty: the audit log is not sent there
};

// Returns the content of the file. Omits a text that contains a line feed.
std::vector<unsigned char> encode(const BoardProperties& properties);

// Ignores unknown lines. Returns false and leaves `properties` unchanged if the number of
// partitions is missing or a value is malformed.
bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties);

// Reads the published properties. Returns default properties if the file is missing or damaged.
// Throws PException (FILE_NOT_READABLE) if the file exists but cannot be read.
BoardProperties readBoardProperties();

// Returns the published properties, read once per process, so that they are the same throughout a
// request. Throws like readBoardProperties().
const BoardProperties& boardProperties();

}  // namespace VeskLib::Host
