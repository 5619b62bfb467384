#include "platform/host/web/MultipartReader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"
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

// The first delimiter need not have a line break in front; one is put there for it.
MultipartReader::MultipartReader(const std::string& contentType, MultipartHandler& handler)
    : handler(handler), delimiter("\r\n--" + findBoundary(contentType)), pending(LINE_BREAK) {
}

void MultipartReader::feed(std::string_view piece) {
    if (state == State::EPILOGUE) {
        return;
    }
    pending += piece;
    while (step()) {
    }
}

void MultipartReader::finish() {
    if (state != State::EPILOGUE) {
        refuse("The form is cut short");
    }
}

// Understands as much of `pending` as it can; false when it needs more.
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
            pending.clear();
            return false;
    }
    return false;
}

// How much of `pending` cannot be the beginning of a delimiter.
std::size_t MultipartReader::safeLength() const {
    return pending.size() < delimiter.size() ? 0 : pending.size() - delimiter.size() + 1;
}

bool MultipartReader::skipPreamble() {
    const std::size_t position = pending.find(delimiter);
    if (position == std::string::npos) {
        pending.erase(0, safeLength());
        return false;
    }
    pending.erase(0, position + delimiter.size());
    state = State::DELIMITER_END;
    return true;
}

// A delimiter ends its line, or is the last one and ends in "--".
bool MultipartReader::endDelimiter() {
    if (pending.size() < 2) {
        return false;
    }
    if (pending.starts_with("--")) {
        state = State::EPILOGUE;
    } else if (pending.starts_with(LINE_BREAK)) {
        // The line break stays: it may be the first half of the header's end.
        state = State::HEADER;
    } else {
        refuse("Something stands behind a boundary");
    }
    return true;
}

bool MultipartReader::readHeader() {
    const std::size_t end = pending.find(HEADER_END);
    // Up to three bytes of the header's end may be there already; they are no part of it.
    const std::size_t length =
        end == std::string::npos ? pending.size() - std::min(pending.size(), HEADER_END.size() - 1)
                                 : end;
    if (length > FormLimits::PART_HEADER_LENGTH + LINE_BREAK.size()) {
        throw makePlatformException(REQUEST_TOO_LARGE, "A part's header is too long");
    }
    if (end == std::string::npos) {
        return false;
    }
    if (++partCount > FormLimits::FIELDS) {
        throw makePlatformException(REQUEST_TOO_LARGE, "There are too many parts");
    }
    const PartHeader header = parsePartHeader(std::string_view(pending).substr(0, end));
    pending.erase(0, end + HEADER_END.size());
    handler.beginPart(header.name, header.isFile ? &header.fileName : nullptr);
    state = State::BODY;
    return true;
}

bool MultipartReader::readBody() {
    const std::size_t position = pending.find(delimiter);
    const std::size_t length = position == std::string::npos ? safeLength() : position;
    if (length != 0) {
        handler.takeBytes(std::string_view(pending).substr(0, length));
        pending.erase(0, length);
    }
    if (position == std::string::npos) {
        return false;
    }
    pending.erase(0, delimiter.size());
    handler.endPart();
    state = State::DELIMITER_END;
    return true;
}

}  // namespace VeskLib::Host
