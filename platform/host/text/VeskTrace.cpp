#include <VeskLib/trace/VeskTrace.h>

#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/boundedLog.h"

#include <VeskLib/getCGIPath.h>

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

namespace VeskLib::trace {

namespace {

const std::size_t LONGEST_TEXT = 2048;

std::string timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm utc = {};
    gmtime_r(&now, &utc);
    char text[sizeof "2026-01-31T23:59:59Z"];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc));
}

// Escapes control characters, so that text from a request cannot start a new line.
std::string escapeControls(const char* text) {
    std::string escaped;
    for (std::size_t i = 0; text[i] != '\0' && i < LONGEST_TEXT; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7F) {
            char code[sizeof "\\xFF"];
            std::snprintf(code, sizeof code, "\\x%02X", byte);
            escaped += code;
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

}  // namespace

VeskTrace::VeskTrace(unsigned char system, unsigned char subsystem, unsigned short module)
    : system(system), subsystem(subsystem), module(module) {
}

VeskTrace::~VeskTrace() = default;

void VeskTrace::putLog(unsigned char level, const char* text) try {
    char origin[sizeof "255.255.FFFF"];
    std::snprintf(origin, sizeof origin, "%u.%u.%04X", system, subsystem, module);
    const std::string line = timestamp() + " [" + std::to_string(getpid()) + "] " + origin +
                             " level " + std::to_string(level) + ": " + escapeControls(text) + "\n";
    Host::appendToLog(getCGIPath(Host::TRACE_FILE), line);
} catch (...) {
    // Out of memory: the request continues without the trace line.
}

}  // namespace VeskLib::trace
