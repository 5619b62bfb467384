#include "platform/host/audit/AuditHistory.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/Descriptor.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>

#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <system_error>
#include <utility>

namespace VeskLib::Host {

namespace {

const std::size_t LONGEST_LINE = 128 * 1024;  // a restore of 256 partitions takes 40 KiB
const std::size_t LONGEST_TEXT = 4096;
const std::size_t LONGEST_SUM = 64;
// The years that AuditTime can represent.
const int FIRST_YEAR = 1970;
const int LAST_YEAR = 2261;
const std::size_t MOST_PARTITIONS = 256;
const std::size_t MOST_COUNTS = 64;
// Far above the size at which the log is rotated.
const std::size_t LARGEST_LOG = 16 * 1024 * 1024;

// Parses a time such as "2026-01-31T23:59:59.123Z", dropping the fraction.
bool readTime(const std::string& text, std::time_t& time) {
    using namespace std::chrono;
    int year = 0;
    unsigned int month = 0;
    unsigned int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int end = 0;
    const std::size_t length = sizeof "2026-01-31T23:59:59.123Z" - 1;
    if (text.size() != length ||
        std::sscanf(text.c_str(), "%4d-%2u-%2uT%2d:%2d:%2d.%*3uZ%n", &year, &month, &day, &hour,
                    &minute, &second, &end) != 6 ||
        end != static_cast<int>(length)) {
        return false;
    }
    const year_month_day date{std::chrono::year(year), std::chrono::month(month),
                              std::chrono::day(day)};
    if (year < FIRST_YEAR || year > LAST_YEAR || !date.ok() || hour < 0 || hour > 23 ||
        minute < 0 || minute > 59 || second < 0 || second > 60) {
        return false;
    }
    const sys_seconds point = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
    time = static_cast<std::time_t>(point.time_since_epoch().count());
    return true;
}

// Parses a line by callbacks, because the destructor of a parsed document would allocate. A
// callback returns false, which stops the parser, if the value cannot be part of a log line.
class LineReader : public nlohmann::json_sax<nlohmann::json> {
public:
    AuditRecord record;

    bool isWhole() const { return timed && !record.event.event.empty(); }

    bool start_object(std::size_t /*elements*/) override {
        ++depth;
        if (depth == MEMBER) {
            where = key1 == "file"     ? Place::FILE
                    : key1 == "counts" ? Place::COUNTS
                    : key1 == "before" ? Place::BEFORE
                    : key1 == "after"  ? Place::AFTER
                                       : Place::OTHER;
            if (where == Place::FILE) {
                record.event.file.emplace();
            }
            return where != Place::OTHER || isForeign();
        }
        return depth == LINE || where == Place::OTHER;
    }

    bool end_object() override {
        --depth;
        leave();
        return true;
    }

    bool start_array(std::size_t /*elements*/) override {
        ++depth;
        if (depth == MEMBER) {
            where = key1 == "partitions" ? Place::PARTITIONS : Place::OTHER;
            return where != Place::OTHER || isForeign();
        }
        return depth != LINE && where == Place::OTHER;
    }

    bool end_array() override {
        --depth;
        leave();
        return true;
    }

    bool key(string_t& name) override {
        if (depth == LINE) {
            key1 = std::move(name);
        } else if (depth == MEMBER) {
            key2 = std::move(name);
        }
        return true;
    }

    bool string(string_t& value) override {
        if (depth == LINE) {
            return takeText(value);
        }
        if (depth == MEMBER && where == Place::FILE) {
            return takeFileText(value);
        }
        if (depth == MEMBER && where == Place::BEFORE) {
            return takeSum(value, record.event.before);
        }
        if (depth == MEMBER && where == Place::AFTER) {
            return takeSum(value, record.event.after);
        }
        return depth > LINE && where == Place::OTHER;
    }

    bool number_unsigned(number_unsigned_t value) override {
        if (depth == LINE) {
            if (key1 == "code" &&
                value <= static_cast<number_unsigned_t>(std::numeric_limits<int>::max())) {
                record.event.code = static_cast<int>(value);
                return true;
            }
            return isForeign();
        }
        return depth > LINE && takeNumber(value);
    }

    bool number_integer(number_integer_t /*value*/) override { return isIgnored(); }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override {
        return isIgnored();
    }
    bool null() override { return isIgnored(); }
    bool boolean(bool /*value*/) override { return isIgnored(); }
    bool binary(binary_t& /*value*/) override { return false; }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::json::exception& /*problem*/) override {
        return false;
    }

private:
    enum class Place { LINE, FILE, COUNTS, PARTITIONS, BEFORE, AFTER, OTHER };

    // Values of `depth`, the number of open objects and arrays.
    static constexpr std::size_t LINE = 1;
    static constexpr std::size_t MEMBER = 2;

    void leave() {
        if (depth == LINE) {
            where = Place::LINE;
        }
    }

    // Returns true if the current member is not decoded, so that its value may have any type.
    bool isForeign() const {
        for (const char* name :
             {"time", "event", "user", "address", "request", "reason", "order", "result", "code",
              "partitions", "file", "counts", "before", "after"}) {
            if (key1 == name) {
                return false;
            }
        }
        return true;
    }

    bool isIgnored() const {
        return depth == LINE ? isForeign() : depth > LINE && where == Place::OTHER;
    }

    bool takeText(string_t& value) {
        AuditEvent& event = record.event;
        const std::pair<const char*, std::string*> texts[] = {
            {"event", &event.event},     {"user", &event.user},     {"address", &event.address},
            {"request", &event.request}, {"reason", &event.reason}, {"order", &event.order},
            {"result", &event.result}};
        if (key1 == "time") {
            timed = readTime(value, record.time);
            return timed;
        }
        for (const auto& [name, text] : texts) {
            if (key1 == name) {
                *text = std::move(value);
                return text->size() <= LONGEST_TEXT;
            }
        }
        return isForeign();
    }

    bool takeFileText(string_t& value) {
        if (value.size() > LONGEST_TEXT) {
            return false;
        }
        if (key2 == "sha256") {
            record.event.file->sha256 = std::move(value);
        } else if (key2 == "version") {
            record.event.file->version = std::move(value);
        }
        return key2 != "partition";
    }

    bool takeSum(string_t& value, std::map<unsigned int, std::string>& sums) {
        unsigned int partition = 0;
        const char* const end = key2.data() + key2.size();
        const auto [rest, error] = std::from_chars(key2.data(), end, partition);
        if (error != std::errc() || rest != end || value.size() > LONGEST_SUM) {
            return false;
        }
        sums[partition] = std::move(value);
        return sums.size() <= MOST_PARTITIONS;
    }

    bool takeNumber(number_unsigned_t value) {
        const bool fits = value <= std::numeric_limits<unsigned int>::max();
        const auto number = static_cast<unsigned int>(value);
        switch (where) {
            case Place::FILE:
                if (key2 == "partition") {
                    record.event.file->partition = number;
                    return fits;
                }
                return key2 != "sha256" && key2 != "version";
            case Place::COUNTS:
                if (depth != MEMBER || key2.size() > LONGEST_TEXT ||
                    record.event.counts.size() >= MOST_COUNTS) {
                    return false;
                }
                record.event.counts[key2] = number;
                return fits;
            case Place::PARTITIONS:
                record.event.partitions.push_back(number);
                return fits && record.event.partitions.size() <= MOST_PARTITIONS;
            case Place::LINE:
            case Place::BEFORE:
            case Place::AFTER:
            case Place::OTHER:
                break;
        }
        return where == Place::OTHER;
    }

    std::size_t depth = 0;
    Place where = Place::LINE;
    std::string key1;
    std::string key2;
    bool timed = false;
};

}  // namespace

bool decode(std::string_view line, AuditRecord& record) {
    LineReader reader;
    if (line.size() > LONGEST_LINE || !nlohmann::json::sax_parse(line, &reader) ||
        !reader.isWhole()) {
        return false;
    }
    record = std::move(reader.record);
    return true;
}

bool AuditHistory::next(std::string_view& line) {
    while (text.empty()) {
        if (!openNext()) {
            return false;
        }
    }
    // `text` ends with a line feed.
    text.pop_back();
    const std::size_t start = text.rfind('\n') + 1;  // npos + 1 is 0
    current.assign(text, start);
    text.resize(start);
    line = current;
    return true;
}

// Reads the next older file. The files may be rotated meanwhile: one that was already read under
// its previous name is skipped.
bool AuditHistory::openNext() {
    while (number < AUDIT_FORMER_FILES && !cut && !unreadable) {
        ++number;
        const std::string path =
            getCGIPath(AUDIT_LOG) + (number == 0 ? "" : "." + std::to_string(number));
        struct stat status = {};
        const Descriptor file(openOwnFile(path, LARGEST_LOG, status));
        if (!file.isOpen()) {
            if (errno == ENOENT && number == 0) {
                continue;  // just rotated, or nothing logged yet
            }
            unreadable = errno != ENOENT;
            return false;
        }
        if (number > 0 && status.st_dev == device && status.st_ino == inode) {
            continue;
        }
        device = status.st_dev;
        inode = status.st_ino;
        const auto size = static_cast<std::uint64_t>(status.st_size);
        const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(size, budget));
        std::size_t filled = 0;
        text.resize(count);
        unreadable = !readSpan(file.get(), static_cast<std::size_t>(size) - count,
                               {reinterpret_cast<unsigned char*>(text.data()), count}, filled);
        text.resize(filled);
        cut = count < size;
        budget -= count;
        // Drops an incomplete line at either end.
        text.resize(text.rfind('\n') + 1);  // npos + 1 is 0
        if (cut) {
            text.erase(0, text.find('\n') == std::string::npos ? text.size() : text.find('\n') + 1);
        }
        return !unreadable;
    }
    return false;
}

}  // namespace VeskLib::Host
