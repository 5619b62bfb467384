#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The channel to the board's back-end. Requests are numbered and carry serialized objects. The
// process connects on its first request. No call blocks longer than the platform's time limit. A
// request fails if its reply is late, truncated or too large.
class CGIRequester {
public:
    // Copies `sessionText`, the login session's text from the request's cookie. Does not connect.
    explicit CGIRequester(const char* sessionText);
    CGIRequester(const CGIRequester&) = delete;
    CGIRequester& operator=(const CGIRequester&) = delete;
    virtual ~CGIRequester();

    // Sends request number `request` and fills `answer` from the reply. Returns false on failure;
    // getErrorCode() then returns the reason, and the content of `answer` depends on its class.
    //
    // At least four zero bytes follow the buffer that `answer` reads from, so that an object of
    // fixed size never reads beyond it.
    bool getInfo(unsigned int request, VeskUi::SerializableObject& answer);

    // Sends `data` as request number `request`. Returns false if the back-end refuses it or cannot
    // be reached. Sends nothing and returns false if JudgeAuthority has refused the user in this
    // process.
    bool setInfo(unsigned int request, const VeskUi::SerializableObject& data);

    // Returns the error code of the last request; 0 if it succeeded or none was made.
    int getErrorCode() const;

    // Returns the session's identifier, which is used in file names. It is not secret, because it
    // is not sufficient to use the session.
    std::string getSessionId() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace VeskLib::Gui
