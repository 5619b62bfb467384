#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The channel to the board's back-end: numbered requests that carry serialized objects. The
// process connects with its first request. No call blocks for longer than the platform's time
// limit; a reply that is late, torn or oversized is a failed request.
class CGIRequester {
public:
    // `sessionText` is what the request's cookie holds of its login session; it is copied.
    explicit CGIRequester(const char* sessionText);
    CGIRequester(const CGIRequester&) = delete;
    CGIRequester& operator=(const CGIRequester&) = delete;
    virtual ~CGIRequester();

    // Fills `answer` from the back-end's answer to request `request`. False on failure; what
    // `answer` then holds is up to its class, and getErrorCode() tells why.
    //
    // The buffer that `answer` reads from is followed by at least four zero bytes, so that an
    // object of fixed size never reads past it.
    bool getInfo(unsigned int request, VeskUi::SerializableObject& answer);

    // Sends `data` as request `request`. Returns false when the back-end refuses it or cannot be
    // reached, and without sending anything when JudgeAuthority has refused the user in this
    // process.
    bool setInfo(unsigned int request, const VeskUi::SerializableObject& data);

    // The error code of the last request; 0 when it succeeded or none was made.
    int getErrorCode() const;

    // The session's identifier. It may be seen in file names; it is not enough to log in.
    std::string getSessionId() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace VeskLib::Gui
