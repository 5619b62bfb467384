#include <VeskLib/Gui/FormInfo.h>

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"
#include "platform/host/web/UrlencodedReader.h"
#include "platform/host/web/requestChecks.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <map>
#include <string_view>

namespace VeskLib::Gui {

using Host::makePlatformException;
using Host::readEnvironment;
using Host::UrlencodedReader;
using Host::FormLimits::BODY_LENGTH;
using Host::FormLimits::QUERY_LENGTH;

namespace {

using Fields = std::map<std::string, std::string>;

const std::string_view URLENCODED = "application/x-www-form-urlencoded";

// The announced length of the body; as much as there is when the web server does not say.
std::size_t bodyLength() {
    const std::string text = readEnvironment("CONTENT_LENGTH");
    if (text.empty()) {
        return std::string::npos;
    }
    std::size_t length = 0;
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), length);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw makePlatformException(Host::REQUEST_MALFORMED, "The length of the body is no number");
    }
    if (length > BODY_LENGTH) {
        throw makePlatformException(Host::REQUEST_TOO_LARGE, "The form is too large");
    }
    return length;
}

// Reads at most `size` bytes of the body; 0 at its end.
std::size_t readBody(char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, buffer, size);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            throw makePlatformException(Host::REQUEST_MALFORMED, "The body cannot be read");
        }
    }
}

void readUrlencodedBody(Fields& fields) {
    const std::size_t announced = bodyLength();
    UrlencodedReader reader(fields);
    char buffer[4096];
    std::size_t total = 0;
    while (total < announced) {
        const std::size_t count = readBody(buffer, std::min(sizeof buffer, announced - total));
        if (count == 0) {
            break;
        }
        total += count;
        if (total > BODY_LENGTH) {
            throw makePlatformException(Host::REQUEST_TOO_LARGE, "The form is too large");
        }
        reader.feed({buffer, count});
    }
    if (announced != std::string::npos && total < announced) {
        throw makePlatformException(Host::REQUEST_MALFORMED, "The body is cut short");
    }
    reader.finish();
}

bool isUrlencodedBody() {
    const std::string type = readEnvironment("CONTENT_TYPE");
    return type.empty() || type == URLENCODED ||
           (type.starts_with(URLENCODED) && type[URLENCODED.size()] == ';');
}

void readQuery(Fields& fields) {
    const std::string query = readEnvironment("QUERY_STRING");
    if (query.size() > QUERY_LENGTH) {
        throw makePlatformException(Host::REQUEST_TOO_LARGE, "The query string is too long");
    }
    UrlencodedReader reader(fields);
    reader.feed(query);
    reader.finish();
}

}  // namespace

struct FormInfo::State {
    Fields fields;
    bool read = false;
};

FormInfo* FormInfo::myInstance = nullptr;

FormInfo::FormInfo() : state(std::make_unique<State>()) {
}

FormInfo::~FormInfo() = default;

bool FormInfo::getFormData(const std::string& name, std::string& value) const {
    if (!state->read) {
        state->read = true;
        // The form first: the first field of a name counts.
        if (Host::isPost() && isUrlencodedBody()) {
            readUrlencodedBody(state->fields);
        }
        readQuery(state->fields);
    }
    const auto field = state->fields.find(name);
    if (field == state->fields.end()) {
        return false;
    }
    value = field->second;
    return true;
}

void FormInfo::terminate() {
    state->read = true;  // whether it was or not: there is nothing to be found any more
    state->fields.clear();
}

}  // namespace VeskLib::Gui
