// A line of the audit log, as the pages read it.

#include "platform/host/audit/AuditHistory.h"
#include "tests/fuzz/support/require.h"

#include <chrono>

using namespace VeskLib;

namespace {

const std::size_t LARGEST_INPUT = 16 * 1024;  // so that its line fits when it is written again

bool areSame(const Host::AuditEvent& one, const Host::AuditEvent& other) {
    const auto file = [](const Host::AuditEvent& event) {
        return event.file ? event.file->sha256 + "\n" + event.file->version + "\n" +
                                std::to_string(event.file->partition)
                          : "none";
    };
    return one.event == other.event && one.user == other.user && one.address == other.address &&
           one.request == other.request && one.reason == other.reason && one.order == other.order &&
           one.partitions == other.partitions && one.before == other.before &&
           one.after == other.after && one.counts == other.counts && one.result == other.result &&
           one.code == other.code && file(one) == file(other);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Host::AuditRecord record;
    record.time = 77;
    record.event.user = "former";
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    if (!decode(line, record)) {
        Fuzz::require(record.time == 77 && record.event.user == "former",
                      "a rejected line changes nothing");
        return 0;
    }
    Fuzz::require(!record.event.event.empty(), "a line names its event");
    if (size <= LARGEST_INPUT) {
        Host::AuditRecord again;
        const auto time = std::chrono::system_clock::from_time_t(record.time);
        Fuzz::require(decode(encode(record.event, time, "board"), again),
                      "a line that was written again is accepted");
        Fuzz::require(again.time == record.time && areSame(again.event, record.event),
                      "it has the same values");
    }
    return 0;
}
