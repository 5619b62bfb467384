#include "platform/host/web/pageHeader.h"

#include "platform/host/channel/BoardProperties.h"
#include "platform/host/html/sharedComponents.h"

#include <VeskLib/PException.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <string>

namespace VeskLib::Host {

namespace {

const std::time_t MINUTE = 60;

const char* const SESSION_NAMES[] = {"session_user",   "session_left", "session_life",
                                     "session_idle",   "session_end",  "session_end_utc",
                                     "session_minutes"};

void shareSeconds(const char* name, std::time_t seconds) {
    shareText(name, std::to_string(std::max<std::time_t>(seconds, 0)));
}

// `number` must be below 100.
std::string twoDigits(std::int64_t number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

// Not with gmtime_r(), which reads the time zone file.
void shareEnd(std::time_t time) {
    using namespace std::chrono;
    const sys_seconds end{seconds(time)};
    const sys_days day = floor<days>(end);
    const year_month_day date(day);
    const hh_mm_ss clock(end - day);
    const std::string minute =
        twoDigits(clock.hours().count()) + ":" + twoDigits(clock.minutes().count());
    shareText("session_end", std::to_string(static_cast<int>(date.year())) + "-" +
                                 twoDigits(static_cast<unsigned int>(date.month())) + "-" +
                                 twoDigits(static_cast<unsigned int>(date.day())) + "T" + minute +
                                 ":" + twoDigits(clock.seconds().count()) + "Z");
    shareText("session_end_utc", minute + " UTC");
}

}  // namespace

void shareBoardName() {
    try {
        const std::string& name = boardProperties().name;
        if (!name.empty()) {
            shareText("board_name", name);
        }
    } catch (const PException&) {
        // Ignored: the page is shown without the name.
    }
}

void shareSession(const Session& session) {
    const std::time_t now = std::time(nullptr);
    const std::time_t left = std::max<std::time_t>(session.ends - now, 0);
    shareText("session_user", session.user);
    shareSeconds("session_left", left);
    shareSeconds("session_life", session.created + SESSION_LIFE_SECONDS - now);
    shareSeconds("session_idle", SESSION_IDLE_SECONDS);
    shareSeconds("session_minutes", left / MINUTE);
    shareEnd(session.ends);
}

void unshareSession() {
    for (const char* name : SESSION_NAMES) {
        unshare(name);
    }
}

}  // namespace VeskLib::Host
