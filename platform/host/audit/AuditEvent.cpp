#include "platform/host/audit/AuditEvent.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/ConfigurationFileReader.h"
#include "platform/host/storage/checkFile.h"
#include "platform/host/storage/files.h"

#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <string_view>

namespace VeskLib::Host {

namespace {

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

// Writes a JSON object member by member. The library's own objects are not used: their destructor
// allocates, which would end the process when memory is exhausted.
class Object {
public:
    void put(std::string_view name, const std::string& value) {
        text += text.empty() ? "{\"" : ",\"";
        text += name;
        text += "\":";
        text += value;
    }

    void putText(std::string_view name, const std::string& value) {
        if (!value.empty()) {
            put(name, jsonText(value));
        }
    }

    std::string end() const { return text.empty() ? "{}" : text + "}"; }

private:
    std::string text;
};

std::string toJSON(const std::vector<unsigned int>& numbers) {
    std::string text;
    for (const unsigned int number : numbers) {
        text += (text.empty() ? "[" : ",") + std::to_string(number);
    }
    return text + "]";
}

std::string toJSON(const AuditedFile& file) {
    Object object;
    object.put("sha256", jsonText(file.sha256));
    object.put("partition", std::to_string(file.partition));
    object.put("version", jsonText(file.version));
    object.put("saved", jsonText(formatTime(std::chrono::system_clock::from_time_t(file.saved))));
    return object.end();
}

void putSums(Object& line, const char* name, const std::map<unsigned int, std::string>& sums) {
    Object object;
    for (const auto& [partition, sum] : sums) {
        object.put(std::to_string(partition), jsonText(sum));
    }
    if (!sums.empty()) {
        line.put(name, object.end());
    }
}

void putCounts(Object& line, const std::map<std::string, unsigned int>& counts) {
    Object object;
    for (const auto& [name, count] : counts) {
        const std::string quoted = jsonText(name);
        object.put(std::string_view(quoted).substr(1, quoted.size() - 2), std::to_string(count));
    }
    if (!counts.empty()) {
        line.put("counts", object.end());
    }
}

AuditedFile describe(const ConfigurationFile& file, const std::string& sha256) {
    return {.sha256 = sha256,
            .partition = file.partition,
            .version = file.version,
            .saved = file.saveTime};
}

}  // namespace

std::string jsonText(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

std::string encode(const AuditEvent& event, AuditTime time, const std::string& board) {
    Object line;
    line.put("time", jsonText(formatTime(time)));
    line.put("event", jsonText(event.event));
    line.putText("board", board);
    line.putText("user", event.user);
    line.putText("address", event.address);
    line.putText("session", event.session);
    line.putText("request", event.request);
    line.putText("reason", event.reason);
    line.putText("order", event.order);
    if (!event.partitions.empty()) {
        line.put("partitions", toJSON(event.partitions));
    }
    if (event.file) {
        line.put("file", toJSON(*event.file));
    }
    putSums(line, "before", event.before);
    putSums(line, "after", event.after);
    putCounts(line, event.counts);
    line.putText("result", event.result);
    if (event.code != 0) {
        line.put("code", std::to_string(event.code));
    }
    return line.end() + "\n";
}

std::optional<AuditedFile> auditedFile(const std::vector<unsigned char>& bytes) {
    ConfigurationFileReader reader;
    reader.take(bytes.data(), bytes.size());
    ConfigurationFile file;
    if (!reader.finish(file)) {
        return std::nullopt;
    }
    return describe(file, sha256Hex(bytes));
}

std::optional<AuditedFile> auditedFileAt(const std::string& path) {
    struct stat status = {};
    const Descriptor file(openOwnFile(path, LARGEST_CONFIGURATION_FILE, status));
    if (!file.isOpen()) {
        throw makePlatformException(FILE_NOT_READABLE, "The file cannot be read for the audit log");
    }
    const std::optional<SummedFile> summed = sumFile(file.get());
    return summed ? std::optional(describe(summed->file, summed->sha256)) : std::nullopt;
}

}  // namespace VeskLib::Host
