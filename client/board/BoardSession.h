#pragma once

#include "client/Schedule.h"
#include "client/http/Transport.h"
#include "client/login/Credentials.h"
#include "client/page/BoardPage.h"

#include <string>
#include <vector>

namespace Efictl {

// A login on a board, and what can be asked of it. Every call throws Failure: REFUSED if the board
// refuses, UNREACHABLE if it does not answer or answers with a page of an unknown kind. Calls that
// change nothing are repeated while that makes sense.
class BoardSession {
public:
    // Logs in. Transport and schedule must outlive it.
    BoardSession(Transport& transport, Schedule& schedule, const Credentials& credentials);
    BoardSession(const BoardSession&) = delete;
    BoardSession& operator=(const BoardSession&) = delete;

    // Ends the session, unless end() has.
    ~BoardSession();

    // Returns the menu with its partitions. Throws Failure (REFUSED) for a user who may not do
    // anything with them.
    BoardPage menu();

    // Makes a backup and returns the bytes of its file, which are not looked at.
    Bytes backUp(unsigned int partition);

    // Hands the board a file. It stays there until restore() has used it, or the session ends.
    Selection upload(const Bytes& file);

    // Restores the file that the board has named so. Throws Failure (UNKNOWN) if it cannot be known
    // whether it did.
    void restore(const std::string& stagedFile, const std::vector<unsigned int>& partitions);

    // Discards an uploaded file that was not restored, and logs out, within the time that is kept
    // for that. Returns what could not be done, in words for people; empty if everything was.
    std::string end() noexcept;

private:
    BoardPage ask(const Request& request);
    BoardPage read(const Request& request, const Response& response) const;
    void logIn(const Credentials& credentials);
    void requireScreen(const char* function);

    Transport& transport;
    Schedule& schedule;
    bool staged = false;
    bool ended = false;
};

}  // namespace Efictl
