#include "board/backend/DescriptionReader.h"

#include "board/backend/initialPayload.h"
#include "platform/host/base/Descriptor.h"
#include "platform/host/channel/hostNames.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"

#include <crypt.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace VeskLib::Board {

namespace {

// A restore gives each target's number in one byte.
const unsigned int MOST_PARTITIONS = 256;
const std::size_t LARGEST_DESCRIPTION = 16 * 1024 * 1024;
const unsigned int LARGEST_NODE_ID = 255;
const unsigned int LARGEST_FUNCTION = 99999;
const std::size_t LONGEST_USER_NAME = 255;
const std::size_t LONGEST_NAME = 100;
const std::size_t LONGEST_SOCKET_PATH = 107;
const unsigned long FEWEST_SHA512_ROUNDS = 5000;
const mode_t OTHERS_READ_OR_WRITE = S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
const unsigned int LAST_BOARD = Host::BOARDS_OF_A_KIND - 1;

std::string functionList(const std::vector<unsigned int>& numbers) {
    std::string list;
    for (const unsigned int number : numbers) {
        list += (list.empty() ? "," : "") + std::to_string(number) + ",";
    }
    return list;
}

// Hashes without "$" belong to the oldest method, which accepts almost any text as a hash, even a
// password that was not hashed.
bool isPasswordHash(const std::string& hash) {
    const int verdict = ::crypt_checksalt(hash.c_str());
    return hash.starts_with('$') &&
           (verdict == CRYPT_SALT_OK || verdict == CRYPT_SALT_METHOD_LEGACY);
}

// Anybody with a hash can try passwords against it, as fast as the method allows. These methods
// make each try expensive and use the whole password, whereas bcrypt uses only 72 bytes.
bool isStrongHash(const std::string& hash) {
    const std::string_view SHA512 = "$6$";
    const std::string_view ROUNDS = "$6$rounds=";
    if (hash.starts_with(ROUNDS)) {
        // Without the parameter, the default applies, which is this minimum.
        return std::strtoul(hash.c_str() + ROUNDS.size(), nullptr, 10) >= FEWEST_SHA512_ROUNDS;
    }
    return hash.starts_with("$y$") || hash.starts_with("$gy$") || hash.starts_with("$7$") ||
           hash.starts_with(SHA512);
}

// The file contains the password hashes. Anybody who can read it can try passwords unnoticed, and
// anybody who can write it can log in.
void needPrivateFile(int file, const std::string& path) {
    struct stat status = {};
    if (::fstat(file, &status) != 0) {
        throw std::runtime_error(path + ": cannot be read: " + std::strerror(errno));
    }
    if (status.st_uid != ::geteuid() && status.st_uid != 0) {
        throw std::runtime_error(path + ": it belongs to another user");
    }
    if ((status.st_mode & OTHERS_READ_OR_WRITE) != 0) {
        throw std::runtime_error(path + ": others may read or write it: chmod 600 " + path);
    }
}

std::string readText(const std::string& path) {
    const Host::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::vector<unsigned char> bytes;
    if (!file.isOpen() || !Host::readOpenFile(file.get(), LARGEST_DESCRIPTION, bytes)) {
        throw std::runtime_error(path + ": cannot be read: " + std::strerror(errno));
    }
    needPrivateFile(file.get(), path);
    return {bytes.begin(), bytes.end()};
}

void readInstalled(DescriptionTable& table, const char* key, BoardDescription::Boards& boards) {
    for (const unsigned int number : table.readNumbers(key, LAST_BOARD)) {
        boards[number] = true;
    }
}

}  // namespace

BoardDescription DescriptionReader::read(DescriptionTable& table) {
    description.partitions.resize(table.readNumber("max_partitions", MOST_PARTITIONS));
    description.name = table.readText("name", LONGEST_NAME, "");
    readHostNames(table);
    description.syslogSocket = table.readText("syslog_socket", LONGEST_SOCKET_PATH, "");
    readBoards(table);
    table.readTables("partition", [this](DescriptionTable& inner) { readPartition(inner); });
    table.readTables("user", [this](DescriptionTable& inner) { readUser(inner); });
    table.refuseUnknownKeys();
    return std::move(description);
}

void DescriptionReader::readHostNames(DescriptionTable& table) {
    for (const std::string& text : table.readTexts("host_names", Host::LONGEST_HOST_NAME)) {
        const std::string name = Host::normaliseHostName(text);
        if (name.empty()) {
            table.fail("host_names", "\"" + text + "\" is not a host name without a port");
        }
        description.hostNames.push_back(name);
    }
}

void DescriptionReader::readBoards(DescriptionTable& table) {
    readInstalled(table, "io_boards", description.ioBoards);
    readInstalled(table, "gsp_boards", description.gspBoards);
    table.readTables("system_board", [this](DescriptionTable& inner) { readSystemBoard(inner); });
}

void DescriptionReader::readSystemBoard(DescriptionTable& table) {
    const unsigned int number = table.readNumber("number", LAST_BOARD);
    SystemBoard& board = description.systemBoards[number];
    if (board.installed) {
        table.fail("number", "system board " + std::to_string(number) + " is described twice");
    }
    board.installed = true;
    board.home = table.readFlag("home", false);
    board.biosVersion = table.readText("bios_version", Host::LARGEST_VERSION, "-");
}

void DescriptionReader::readPartition(DescriptionTable& table) {
    const unsigned int number = table.readNumber("number", MOST_PARTITIONS - 1);
    if (number >= description.partitions.size()) {
        table.fail("number",
                   "\"max_partitions\" leaves no room for partition " + std::to_string(number));
    }
    PartitionDescription& partition = description.partitions[number];
    if (partition.installed) {
        table.fail("number", "partition " + std::to_string(number) + " is described twice");
    }
    partition.installed = true;
    partition.running = table.readFlag("running", false);
    partition.name = table.readText("name", Host::LARGEST_PARTITION_NAME);
    for (const unsigned int id : table.readNumbers("node_ids", LARGEST_NODE_ID)) {
        partition.nodeIds.push_back(static_cast<unsigned char>(id));
    }
    readPayload(table, number);
}

void DescriptionReader::readPayload(DescriptionTable& table, unsigned int number) {
    PartitionDescription& partition = description.partitions[number];
    if (const toml::table* settings = table.readTable("settings")) {
        const toml::node* unusable = makeSettingLines(*settings, partition.initialPayload);
        if (unusable != nullptr) {
            table.failAt(*unusable, "a setting is one line: \"name\" = text, number or flag");
        }
    }
    const unsigned int count = table.readNumber("fill_bytes", Host::LARGEST_CONFIGURATION_FILE, 0);
    const std::vector<unsigned char> fill = makeFillBytes(count, number);
    partition.initialPayload.insert(partition.initialPayload.end(), fill.begin(), fill.end());

    Host::ConfigurationFile file;
    file.version = description.biosVersionOf(partition);
    file.partitionName = partition.name;
    file.payload = partition.initialPayload;
    if (encode(file).empty()) {
        table.fail("fill_bytes", "the partition's configuration file would be larger than " +
                                     std::to_string(Host::LARGEST_CONFIGURATION_FILE) + " bytes");
    }
}

void DescriptionReader::readUser(DescriptionTable& table) {
    User user;
    user.name = table.readText("name", LONGEST_USER_NAME);
    if (user.name.empty() || !userNames.insert(user.name).second) {
        table.fail("name", "a user needs a unique name");
    }
    user.passwordHash = table.readText("password_hash", CRYPT_OUTPUT_SIZE);
    if (!isPasswordHash(user.passwordHash)) {
        table.fail("password_hash", "not a password hash of crypt(3)");
    }
    if (!isStrongHash(user.passwordHash)) {
        table.fail("password_hash",
                   "the method of this hash is too weak; make one with \"mkpasswd -m yescrypt\"");
    }
    user.rights.everyFunction = table.readFlag("every_function", false);
    user.rights.functions = functionList(table.readNumbers("functions", LARGEST_FUNCTION));
    description.users.push_back(user);
}

BoardDescription loadBoardDescription(const std::string& path) {
    try {
        const std::string text = readText(path);
        // Does not pass the path, because the library would copy it where it cannot report that
        // memory ran out.
        const toml::table parsed = toml::parse(std::string_view(text));
        DescriptionTable table(path, parsed);
        return DescriptionReader().read(table);
    } catch (const toml::parse_error& error) {
        const toml::source_position position = error.source().begin;
        const std::string place =
            position ? ":" + std::to_string(position.line) + ":" + std::to_string(position.column)
                     : std::string();
        throw std::runtime_error(path + place + ": " + std::string(error.description()));
    }
}

}  // namespace VeskLib::Board
