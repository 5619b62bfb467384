#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

// A configuration file as the audit log describes it.
struct AuditedFile {
    std::string sha256;  // of the whole file
    unsigned int partition = 0;
    std::string version;
    std::uint32_t saved = 0;  // seconds since 1970-01-01 UTC
};

// One line of the audit log. docs/audit.md describes the fields; empty ones are left out.
struct AuditEvent {
    std::string event;
    std::string user;
    std::string address;
    std::string session;  // the identifier, which is not secret
    std::string request;
    std::string reason;
    std::string order;
    std::vector<unsigned int> partitions;
    std::optional<AuditedFile> file;
    std::map<unsigned int, std::string> before;  // SHA-256 of a partition's configuration
    std::map<unsigned int, std::string> after;
    std::map<std::string, unsigned int> counts;  // of events without a line of their own, by name
    std::string result;
    int code = 0;
};

// Returns `text` as a quoted JSON string, which is always ASCII.
std::string jsonText(const std::string& text);

using AuditTime = std::chrono::system_clock::time_point;

// Returns the line for `event`, with its line feed; `board` is the board's name. The line is ASCII,
// so that no text in it can end the line or change the direction of text.
std::string encode(const AuditEvent& event, AuditTime time, const std::string& board);

// Describes a file with these bytes. Returns nullopt if they are not a configuration file.
std::optional<AuditedFile> auditedFile(const std::vector<unsigned char>& bytes);

// The same for the file `path`, which is read piece by piece. Throws PException (FILE_NOT_READABLE)
// if it cannot be read or belongs to another user.
std::optional<AuditedFile> auditedFileAt(const std::string& path);

}  // namespace VeskLib::Host
