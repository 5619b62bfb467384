#include "platform/host/audit/AuditEvent.h"

#include "platform/host/base/sha256.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <ctime>

namespace VeskLib::Host {

namespace {

using JSON = nlohmann::ordered_json;

std::string formatTime(AuditTime time) {
    const std::int64_t milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm utc = {};
    gmtime_r(&seconds, &utc);
    char text[sizeof "2026-01-31T23:59:59"];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    char fraction[sizeof ".999Z"];
    static_cast<void>(std::snprintf(fraction, sizeof fraction, ".%03uZ",
                                    static_cast<unsigned int>(milliseconds % 1000) % 1000U));
    return std::string(text, size) + fraction;
}

void putText(JSON& line, const char* name, const std::string& text) {
    if (!text.empty()) {
        line[name] = text;
    }
}

void putSums(JSON& line, const char* name, const std::map<unsigned int, std::string>& sums) {
    for (const auto& [partition, sum] : sums) {
        line[name][std::to_string(partition)] = sum;
    }
}

JSON toJSON(const AuditedFile& file) {
    return {{"sha256", file.sha256},
            {"partition", file.partition},
            {"version", file.version},
            {"saved", formatTime(std::chrono::system_clock::from_time_t(file.saved))}};
}

}  // namespace

std::string encode(const AuditEvent& event, AuditTime time) {
    JSON line = {{"time", formatTime(time)}, {"event", event.event}};
    putText(line, "user", event.user);
    putText(line, "address", event.address);
    putText(line, "session", event.session);
    putText(line, "request", event.request);
    putText(line, "reason", event.reason);
    putText(line, "order", event.order);
    if (!event.partitions.empty()) {
        line["partitions"] = event.partitions;
    }
    if (event.file) {
        line["file"] = toJSON(*event.file);
    }
    putSums(line, "before", event.before);
    putSums(line, "after", event.after);
    for (const auto& [name, count] : event.counts) {
        line["counts"][name] = count;
    }
    putText(line, "result", event.result);
    if (event.code != 0) {
        line["code"] = event.code;
    }
    return line.dump(-1, ' ', true, JSON::error_handler_t::replace) + "\n";
}

std::optional<AuditedFile> auditedFile(const std::vector<unsigned char>& bytes) {
    ConfigurationFile file;
    if (!decode(bytes, file)) {
        return std::nullopt;
    }
    return AuditedFile{.sha256 = sha256Hex(bytes),
                       .partition = file.partition,
                       .version = file.version,
                       .saved = file.saveTime};
}

}  // namespace VeskLib::Host
