#include "platform/host/web/RequestBody.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <string>

namespace VeskLib::Host {

namespace {

std::optional<std::size_t> readAnnouncedLength() {
    const std::string text = readEnvironment("CONTENT_LENGTH");
    if (text.empty()) {
        return std::nullopt;
    }
    std::size_t length = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, length);
    if (result.ec != std::errc() || result.ptr != end) {
        throw makePlatformException(REQUEST_MALFORMED, "The length of the body is not a number");
    }
    return length;
}

}  // namespace

RequestBody::RequestBody(int milliseconds)
    : deadline(milliseconds), announced(readAnnouncedLength()) {
}

std::string_view RequestBody::next() {
    const std::size_t wanted =
        announced ? std::min(sizeof buffer, *announced - taken) : sizeof buffer;
    if (wanted == 0) {
        return {};
    }
    if (!waitUntilReady(STDIN_FILENO, POLLIN, deadline)) {
        throw makePlatformException(REQUEST_TOO_SLOW, "The body does not arrive in time");
    }
    ssize_t count = -1;
    do {
        count = read(STDIN_FILENO, buffer, wanted);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        throw makePlatformException(REQUEST_MALFORMED, "The body cannot be read");
    }
    if (count == 0 && announced) {
        throw makePlatformException(REQUEST_MALFORMED, "The body is cut short");
    }
    taken += static_cast<std::size_t>(count);
    return {buffer, static_cast<std::size_t>(count)};
}

}  // namespace VeskLib::Host
