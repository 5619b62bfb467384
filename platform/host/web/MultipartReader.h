#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Receives what a MultipartReader parses. A part is a file if its header has a file name.
class MultipartHandler {
public:
    MultipartHandler() = default;
    MultipartHandler(const MultipartHandler&) = delete;
    MultipartHandler& operator=(const MultipartHandler&) = delete;
    virtual ~MultipartHandler() = default;

    // Called at the start of a part; `fileName` is null for a form field.
    virtual void beginPart(const std::string& name, const std::string* fileName) = 0;

    // Called with the next bytes of the part, which are valid only during the call.
    virtual void takeBytes(std::string_view bytes) = 0;

    virtual void endPart() = 0;
};

// Parses a multipart/form-data body in pieces of any size. Buffers at most a boundary and one
// part's header, however long the body is.
//
// Every operation throws PException: REQUEST_MALFORMED if the body is malformed, REQUEST_TOO_LARGE
// if it exceeds one of the FormLimits.
class MultipartReader {
public:
    // `contentType` is the request's, including the boundary. `handler` must outlive the reader.
    MultipartReader(const std::string& contentType, MultipartHandler& handler);

    void feed(std::string_view piece);

    // Ends the body; it must be complete.
    void finish();

private:
    enum class State { PREAMBLE, DELIMITER_END, HEADER, BODY, EPILOGUE };

    bool step();
    bool skipPreamble();
    bool endDelimiter();
    bool readHeader();
    bool readBody();
    std::size_t safeLength() const;

    MultipartHandler& handler;
    std::string delimiter;     // with the preceding line break
    std::string pending;       // received but not yet parsed
    std::string_view rest;     // of `pending`, within feed()
    std::size_t searched = 0;  // bytes of `rest` without the header's end
    State state = State::PREAMBLE;
    std::size_t partCount = 0;
};

}  // namespace VeskLib::Host
