#include "platform/host/web/MultipartReader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"
#include "platform/host/web/headerValue.h"
#include "platform/host/web/partHeader.h"

#include <algorithm>

namespace VeskLib::Host {

namespace {

const std::string_view LINE_BREAK = "\r\n";
const std::string_view HEADER_END = "\r\n\r\n";

[[noreturn]] void refuse(const char* problem) {
    throw makePlatformException(REQUEST_MALFORMED, problem);
}

std::string findBoundary(const std::string& contentType) {
    std::string boundary;
    if (!findParameter(contentType, "boundary", boundary) || boundary.empty() ||
        boundary.size() > FormLimits::BOUNDARY_LENGTH ||
        boundary.find_first_of("\r\n") != std::string::npos) {
        refuse("The form has no usable boundary");
    }
    return boundary;
}

}  // namespace

// The first delimiter may lack the preceding line break, so one is inserted here.
MultipartReader::MultipartReader(const std::string& contentType, MultipartHandler& handler)
    : handler(handler), delimiter("\r\n--" + findBoundary(contentType)), pending(LINE_BREAK) {
}

void MultipartReader::feed(std::string_view piece) {
    if (state == State::EPILOGUE) {
        return;
    }
    pending += piece;
    rest = pending;
    while (step()) {
    }
    // Erased once per piece, because each erasure moves the remaining bytes.
    pending.erase(0, pending.size() - rest.size());
}

void MultipartReader::finish() {
    if (state != State::EPILOGUE) {
        refuse("The form is cut short");
    }
}

// Parses one element of `rest`. Returns false if it needs more bytes.
bool MultipartReader::step() {
    switch (state) {
        case State::PREAMBLE:
            return skipPreamble();
        case State::DELIMITER_END:
            return endDelimiter();
        case State::HEADER:
            return readHeader();
        case State::BODY:
            return readBody();
        case State::EPILOGUE:
            rest = {};
            return false;
    }
    return false;
}

// Returns the length of the part of `rest` that cannot contain the start of a delimiter.
std::size_t MultipartReader::safeLength() const {
    return rest.size() < delimiter.size() ? 0 : rest.size() - delimiter.size() + 1;
}

bool MultipartReader::skipPreamble() {
    const std::size_t position = rest.find(delimiter);
    if (position == std::string_view::npos) {
        rest.remove_prefix(safeLength());
        return false;
    }
    rest.remove_prefix(position + delimiter.size());
    state = State::DELIMITER_END;
    return true;
}

// Parses what follows a delimiter: a line break, or "--" after the last one.
bool MultipartReader::endDelimiter() {
    if (rest.size() < 2) {
        return false;
    }
    if (rest.starts_with("--")) {
        state = State::EPILOGUE;
    } else if (rest.starts_with(LINE_BREAK)) {
        // The line break stays, because it may be the first half of the header's end.
        state = State::HEADER;
    } else {
        refuse("Unexpected bytes after a boundary");
    }
    return true;
}

bool MultipartReader::readHeader() {
    const std::size_t end = rest.find(HEADER_END, searched);
    // The last three bytes may belong to the header's end, which does not count towards the length.
    searched = rest.size() - std::min(rest.size(), HEADER_END.size() - 1);
    const std::size_t length = std::min(end, searched);
    if (length > FormLimits::PART_HEADER_LENGTH + LINE_BREAK.size()) {
        throw makePlatformException(REQUEST_TOO_LARGE, "A part's header is too long");
    }
    if (end == std::string_view::npos) {
        return false;
    }
    if (++partCount > FormLimits::FIELDS) {
        throw makePlatformException(REQUEST_TOO_LARGE, "There are too many parts");
    }
    searched = 0;
    const PartHeader header = parsePartHeader(rest.substr(0, end));
    rest.remove_prefix(end + HEADER_END.size());
    handler.beginPart(header.name, header.isFile ? &header.fileName : nullptr);
    state = State::BODY;
    return true;
}

bool MultipartReader::readBody() {
    const std::size_t position = rest.find(delimiter);
    const std::size_t length = position == std::string_view::npos ? safeLength() : position;
    if (length != 0) {
        handler.takeBytes(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    if (position == std::string_view::npos) {
        return false;
    }
    rest.remove_prefix(delimiter.size());
    handler.endPart();
    state = State::DELIMITER_END;
    return true;
}

}  // namespace VeskLib::Host
