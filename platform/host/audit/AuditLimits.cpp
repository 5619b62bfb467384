#include "platform/host/audit/AuditLimits.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace VeskLib::Host {

bool AuditLimits::admit(const AuditEvent& event, std::time_t now) {
    Period& period = periods[event.user];
    if (period.isOver(now)) {
        // An origin that keeps filling its periods gets ever longer ones.
        const bool goesOn =
            period.lines >= LINES && now >= period.start && now < period.start + 2 * period.length;
        period = {.start = now,
                  .length = goesOn ? std::min(2 * period.length, LONGEST_PERIOD) : SHORTEST_PERIOD,
                  .lines = 0,
                  .counts = std::move(period.counts)};
    }
    if (period.lines < LINES) {
        ++period.lines;
        return true;
    }
    ++period.counts[event.event];
    return false;
}

std::vector<AuditEvent> AuditLimits::takeReports(std::time_t now) {
    std::vector<AuditEvent> reports;
    for (auto period = periods.begin(); period != periods.end();) {
        auto& [user, state] = *period;
        if (state.isOver(now) && !state.counts.empty()) {
            AuditEvent report;
            report.event = user.empty() ? "anonymous" : "repeated";
            report.user = user;
            report.counts.swap(state.counts);
            reports.push_back(std::move(report));
        }
        // A period is kept as long as it can affect the length of the next one.
        const bool forgotten = now < state.start || now >= state.start + 2 * state.length;
        period = forgotten ? periods.erase(period) : std::next(period);
    }
    return reports;
}

std::string AuditLimits::save() const {
    std::string text;
    for (const auto& [user, period] : periods) {
        text += (text.empty() ? "{" : ",") + jsonText(user) +
                ":{\"start\":" + std::to_string(period.start) +
                ",\"length\":" + std::to_string(period.length) +
                ",\"lines\":" + std::to_string(period.lines) + ",\"counts\":{";
        const char* separator = "";
        for (const auto& [event, count] : period.counts) {
            text += separator + jsonText(event) + ":" + std::to_string(count);
            separator = ",";
        }
        text += "}}";
    }
    return text.empty() ? "{}" : text + "}";
}

// Parses the saved text by callbacks. The destructor of a parsed document would allocate, which
// would end the process when memory is exhausted.
class AuditLimits::Reader : public nlohmann::json_sax<nlohmann::json> {
public:
    AuditLimits limits;

    bool start_object(std::size_t /*elements*/) override {
        if (depth == PERIOD) {
            if (keys[PERIOD] != "counts") {
                return false;
            }
        } else if (depth == USER) {
            limits.periods.try_emplace(keys[USER]);
        }
        return ++depth <= COUNTS;
    }
    bool end_object() override {
        --depth;
        return true;
    }
    bool key(string_t& name) override {
        keys[depth] = std::move(name);
        return true;
    }
    bool number_unsigned(number_unsigned_t number) override {
        if (depth == COUNTS) {
            limits.periods[keys[USER]].counts[keys[COUNTS]] = static_cast<unsigned int>(number);
            return true;
        }
        return depth == PERIOD && takeMember(static_cast<number_integer_t>(number));
    }
    bool number_integer(number_integer_t number) override {
        return depth == PERIOD && takeMember(number);
    }
    bool number_float(number_float_t /*number*/, const string_t& /*text*/) override {
        return false;
    }
    bool start_array(std::size_t /*elements*/) override { return false; }
    bool end_array() override { return false; }
    bool null() override { return false; }
    bool boolean(bool /*value*/) override { return false; }
    bool string(string_t& /*value*/) override { return false; }
    bool binary(binary_t& /*value*/) override { return false; }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::json::exception& /*problem*/) override {
        return false;
    }

private:
    // Values of `depth`, the number of open objects, where the keys of each kind appear.
    static constexpr std::size_t USER = 1;
    static constexpr std::size_t PERIOD = 2;
    static constexpr std::size_t COUNTS = 3;

    bool takeMember(number_integer_t number) {
        Period& period = limits.periods[keys[USER]];
        const std::string& name = keys[PERIOD];
        if (name == "start") {
            period.start = number;
        } else if (name == "length") {
            period.length = std::clamp<std::time_t>(number, SHORTEST_PERIOD, LONGEST_PERIOD);
        } else if (name == "lines") {
            period.lines = static_cast<unsigned int>(number);
        } else {
            return false;
        }
        return true;
    }

    std::size_t depth = 0;
    std::string keys[COUNTS + 1];
};

AuditLimits AuditLimits::load(const std::string& text) {
    Reader reader;
    if (!nlohmann::json::sax_parse(text, &reader)) {
        return {};
    }
    return std::move(reader.limits);
}

}  // namespace VeskLib::Host
