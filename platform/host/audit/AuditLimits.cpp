#include "platform/host/audit/AuditLimits.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace VeskLib::Host {

bool AuditLimits::admit(const AuditEvent& event, std::time_t now) {
    Period& period = periods[event.user];
    if (period.isOver(now)) {
        // The longer somebody goes on, the fewer lines they get.
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
        // Kept for as long as it decides on the length of the next period.
        const bool forgotten = now < state.start || now >= state.start + 2 * state.length;
        period = forgotten ? periods.erase(period) : std::next(period);
    }
    return reports;
}

std::string AuditLimits::save() const {
    nlohmann::json saved = nlohmann::json::object();
    for (const auto& [user, period] : periods) {
        saved[user] = {{"start", period.start},
                       {"length", period.length},
                       {"lines", period.lines},
                       {"counts", period.counts}};
    }
    return saved.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

AuditLimits AuditLimits::load(const std::string& text) {
    AuditLimits limits;
    try {
        const nlohmann::json all = nlohmann::json::parse(text);
        for (const auto& [user, saved] : all.items()) {
            Period period;
            saved.at("start").get_to(period.start);
            period.length =
                std::clamp(saved.at("length").get<std::time_t>(), SHORTEST_PERIOD, LONGEST_PERIOD);
            saved.at("lines").get_to(period.lines);
            saved.at("counts").get_to(period.counts);
            limits.periods[user] = std::move(period);
        }
    } catch (const nlohmann::json::exception&) {
        return {};
    }
    return limits;
}

}  // namespace VeskLib::Host
