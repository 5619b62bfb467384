#pragma once

#include "platform/host/audit/AuditEvent.h"
#include "platform/host/audit/Turn.h"

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// The youngest former file is audit.log.1.
inline constexpr int AUDIT_FORMER_FILES = 15;

// The board's audit log: one line of JSON for each event, /var/log/audit.log. It is rotated at
// 1 MiB, with 15 former files kept (".1" is the youngest).
//
// An object holds the log: no other process or thread writes to it meanwhile. So a change between
// two of its lines has its place in the order of the log.
class AuditLog {
public:
    // Waits up to 5 s for other holders, threads of this process in the order in which they came,
    // and takes `reserve` bytes of the disk in advance, so that a line about what has happened does
    // not fail for lack of space. Throws PException (AUDIT_NOT_WRITTEN) when any of that is not
    // possible.
    explicit AuditLog(std::size_t reserve);
    AuditLog(const AuditLog&) = delete;
    AuditLog& operator=(const AuditLog&) = delete;
    ~AuditLog();

    // Appends the line of `event`; when it returns, the line is on the disk. Throws PException
    // (AUDIT_NOT_WRITTEN) otherwise, and the log is as before.
    void append(const AuditEvent& event);

    // Appends the line of an event that anybody can cause as often as they like. After the tenth of
    // one origin in a minute, events are only counted, in a line that follows when the minute is
    // over; so nobody can rotate the other lines away. The minute becomes two, four and so on, up
    // to a day, as long as each sees ten events.
    void appendLimited(const AuditEvent& event);

private:
    AuditLog(std::size_t reserve, const Deadline& deadline);

    void open(std::size_t reserve);
    void rotate();

    const std::string path;
    const Turn turn;
    const int lock;
    int descriptor = -1;
    long long size = 0;
};

// Appends one line.
void record(const AuditEvent& event);

// Appends one limited line, for a refusal, which changes nothing. Does not throw, because the
// refusal is what the client must get; a failure is traced.
void recordRefusal(const AuditEvent& event) noexcept;

}  // namespace VeskLib::Host
