#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

// A configuration file as the audit log names it.
struct AuditedFile {
    std::string sha256;  // of the whole file
    unsigned int partition = 0;
    std::string version;
    std::uint32_t saved = 0;  // seconds since 1970-01-01 UTC
};

// One line of the audit log; docs/audit.md gives the fields. Empty ones are left out.
struct AuditEvent {
    std::string event;
    std::string user;
    std::string address;
    std::string session;  // the identifier, which is no secret
    std::string request;
    std::string reason;
    std::string order;
    std::vector<unsigned int> partitions;
    std::optional<AuditedFile> file;
    std::map<unsigned int, std::string> before;  // SHA-256 of a partition's configuration
    std::map<unsigned int, std::string> after;
    std::map<std::string, unsigned int> counts;  // of events that have no line of their own
    std::string result;
    int code = 0;
};

// `text` as JSON has it, in quotes. It is ASCII, whatever `text` is.
std::string jsonText(const std::string& text);

using AuditTime = std::chrono::system_clock::time_point;

// The line of `event` on the board of that name, with its line feed. It is ASCII: whatever a text
// contains cannot end the line or turn its direction.
std::string encode(const AuditEvent& event, AuditTime time, const std::string& board);

// What the log says of a file with these bytes; none when they are not a configuration file.
std::optional<AuditedFile> auditedFile(const std::vector<unsigned char>& bytes);

// The same for the file `path`, read piece by piece. Throws PException (FILE_NOT_READABLE) when it
// cannot be read, or belongs to another user.
std::optional<AuditedFile> auditedFileAt(const std::string& path);

}  // namespace VeskLib::Host
