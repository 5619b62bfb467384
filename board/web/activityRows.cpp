#include "board/web/activityRows.h"

#include "board/web/SkeletonRow.h"
#include "platform/host/text/Catalogue.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace VeskLib::Board {

namespace {

const char* const ROW_SKELETON = "/usr/local/www/skel/skeleton_web_activity_tbl.txt";

const std::size_t SUM_DIGITS = 12;

struct Words {
    std::string_view name;
    int caption;
};

const Words ACTIONS[] = {
    {"login", 9320},         {"login_failed", 9321}, {"logout", 9322},    {"session_expired", 9323},
    {"session_ended", 9324}, {"backup", 9325},       {"download", 9326},  {"upload", 9327},
    {"restore", 9328},       {"discard", 9329},      {"refusal", 9330},   {"fault_order", 9331},
    {"start", 9332},         {"end", 9333},          {"anonymous", 9334}, {"repeated", 9335},
};

const int REFUSED = 9341;
const Words RESULTS[] = {{"done", 9340},   {"refused", REFUSED}, {"begun", 9342},
                         {"failed", 9343}, {FOUND_DONE, 9344},   {FOUND_UNCHANGED, 9345}};

const Words REASONS[] = {{"rights", 9357}, {"cross_site", 9362}, {"method", 9363},
                         {"host", 9364},   {"limit", 9365},      {"user", 9366}};

// Returns the caption for `name`; 0 if there is none.
template <std::size_t Count>
int captionFor(const Words (&table)[Count], std::string_view name) {
    for (const Words& words : table) {
        if (words.name == name) {
            return words.caption;
        }
    }
    return 0;
}

// Returns the words for `name`, or `name` itself, because a later version of the board may have
// written the line.
template <std::size_t Count>
std::string wordsFor(const Words (&table)[Count], const std::string& name) {
    const int number = captionFor(table, name);
    return number == 0 ? name : caption(number);
}

std::string describeCounts(const std::map<std::string, unsigned int>& counts) {
    std::string text;
    for (const auto& [event, count] : counts) {
        text +=
            (text.empty() ? "" : ", ") + wordsFor(ACTIONS, event) + ": " + std::to_string(count);
    }
    return text;
}

std::string listNumbers(const std::vector<unsigned int>& numbers) {
    std::string text;
    for (const unsigned int number : numbers) {
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    }
    return text;
}

std::string formatTime(std::time_t time, bool local, const char* format) {
    std::tm parts = {};
    char text[64];
    local ? localtime_r(&time, &parts) : gmtime_r(&time, &parts);
    return std::string(text, std::strftime(text, sizeof text, format, &parts));
}

// One row of the table of actions.
class Row : public SkeletonRow {
public:
    explicit Row(const Host::AuditRecord& record) : SkeletonRow(ROW_SKELETON) {
        const Host::AuditEvent& event = record.event;
        put("time", localTime(record.time));
        put("time_utc", utcTime(record.time));
        put("time_utc_text", formatTime(record.time, false, "%Y-%m-%d %H:%M:%S UTC"));
        put("user", event.user);
        put("address", event.address);
        put("action", describeAction(event));
        put("partitions", listNumbers(event.partitions));
        put("result", describeResult(event));
        if (event.file) {
            put("file", std::to_string(event.file->partition));
            put("file_version", event.file->version);
            put("file_sum", event.file->sha256.substr(0, SUM_DIGITS));
        }
    }
};

}  // namespace

bool RestoreOutcomes::settle(Host::AuditEvent& event) {
    if (event.event == "start") {
        started = std::move(event.after);
        return false;
    }
    if (event.event != "restore") {
        return false;
    }
    // A start shows nothing about restores before this one, which may have changed the same
    // partitions.
    const Sums found = std::exchange(started, {});
    if (event.result != "begun") {
        requests.insert(event.request);
        return false;
    }
    if (requests.contains(event.request)) {
        return true;
    }
    const auto isFound = [&found](const Sums& sums) {
        return !sums.empty() && std::ranges::all_of(sums, [&found](const auto& sum) {
            const auto same = found.find(sum.first);
            return same != found.end() && same->second == sum.second;
        });
    };
    if (isFound(event.after)) {
        event.result = FOUND_DONE;
    } else if (isFound(event.before)) {
        event.result = FOUND_UNCHANGED;
    }
    return false;
}

LatestActions readLatestActions(const std::string& user) {
    LatestActions actions;
    Host::AuditHistory history(MOST_AUDIT_BYTES);
    RestoreOutcomes outcomes;
    std::string_view line;
    Host::AuditRecord record;
    while (history.next(line)) {
        if (!Host::decode(line, record)) {
            continue;
        }
        const bool settled = outcomes.settle(record.event);
        record.event.before.clear();
        record.event.after.clear();
        if (settled || (!user.empty() && record.event.user != user)) {
            continue;
        }
        if (actions.records.size() == MOST_ACTIONS) {
            actions.complete = false;
            return actions;
        }
        actions.records.push_back(std::move(record));
    }
    actions.complete = !history.wasCut();
    actions.unreadable = history.wasUnreadable();
    return actions;
}

std::string describeAction(const Host::AuditEvent& event) {
    return wordsFor(ACTIONS, event.event);
}

std::string describeResult(const Host::AuditEvent& event) {
    const bool refusal = event.event == "login_failed" || event.event == "refusal";
    std::string text = refusal                ? caption(REFUSED)
                       : event.result.empty() ? ""
                                              : wordsFor(RESULTS, event.result);
    const auto add = [&text](const std::string& more, const char* open, const char* close) {
        text += (text.empty() ? "" : " ") + (open + more) + close;
    };
    if (!event.reason.empty()) {
        add(wordsFor(REASONS, event.reason), "(", ")");
    } else if (const char* words =
                   Host::findText(Host::requestLanguage(), Host::TextSet::CODES, event.code)) {
        add(words, "(", ")");
    }
    if (event.code != 0) {
        add(std::to_string(event.code), "[", "]");
    }
    if (!event.order.empty()) {
        add(event.order, "", "");
    }
    if (!event.counts.empty()) {
        add(describeCounts(event.counts), "", "");
    }
    return text;
}

std::string localTime(std::time_t time) {
    return formatTime(time, true, "%Y-%m-%d %H:%M:%S");
}

std::string utcTime(std::time_t time) {
    return formatTime(time, false, "%Y-%m-%dT%H:%M:%SZ");
}

void printActivityRows(const LatestActions& actions) {
    for (const Host::AuditRecord& record : actions.records) {
        Row(record).print();
    }
}

}  // namespace VeskLib::Board
