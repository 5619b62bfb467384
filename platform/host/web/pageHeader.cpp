#include "platform/host/web/pageHeader.h"

#include "platform/host/channel/BoardProperties.h"
#include "platform/host/html/sharedComponents.h"

#include <VeskLib/PException.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
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

// Without gmtime_r(), which reads the board's time zone.
void shareEnd(std::time_t time) {
    using namespace std::chrono;
    const sys_seconds end{seconds(time)};
    const sys_days day = floor<days>(end);
    const year_month_day date(day);
    const hh_mm_ss clock(end - day);
    char text[64];
    static_cast<void>(std::snprintf(
        text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
        static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count())));
    shareText("session_end", text);
    static_cast<void>(std::snprintf(text, sizeof text, "%02d:%02d UTC",
                                    static_cast<int>(clock.hours().count()),
                                    static_cast<int>(clock.minutes().count())));
    shareText("session_end_utc", text);
}

}  // namespace

void shareBoardName() {
    try {
        const std::string& name = boardProperties().name;
        if (!name.empty()) {
            shareText("board_name", name);
        }
    } catch (const PException&) {
        // The page is shown without it.
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
