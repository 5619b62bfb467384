#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Takes what a MultipartReader finds. A part is a file when its header names a file.
class MultipartHandler {
public:
    MultipartHandler() = default;
    MultipartHandler(const MultipartHandler&) = delete;
    MultipartHandler& operator=(const MultipartHandler&) = delete;
    virtual ~MultipartHandler() = default;

    // A part begins; `fileName` is null for a form field.
    virtual void beginPart(const std::string& name, const std::string* fileName) = 0;

    // The next bytes of the part; valid during the call.
    virtual void takeBytes(std::string_view bytes) = 0;

    virtual void endPart() = 0;
};

// Reads a multipart/form-data body in pieces of any size. It keeps no more of the body than a
// boundary and one part's header, however long the body is.
//
// Every operation throws PException: REQUEST_MALFORMED when the body is not well formed,
// REQUEST_TOO_LARGE when a limit of FormLimits is passed.
class MultipartReader {
public:
    // `contentType` is the request's, with its boundary. `handler` must outlive the reader.
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
    std::string delimiter;     // with the line break in front
    std::string pending;       // read, and not yet understood
    std::string_view rest;     // of `pending`, within feed()
    std::size_t searched = 0;  // of `rest`: the header does not end there
    State state = State::PREAMBLE;
    std::size_t partCount = 0;
};

}  // namespace VeskLib::Host
