#pragma once

#include "client/Schedule.h"
#include "client/http/Transport.h"
#include "client/login/Credentials.h"
#include "client/page/BoardPage.h"

#include <string>
#include <vector>

namespace Efictl {

// A login session on a board. Every call throws Failure: REFUSED if the board refuses, UNREACHABLE
// if it does not answer or answers with an unknown page. Retries requests that change nothing, as
// Attempts decides.
class BoardSession {
public:
    // Logs in. `transport` and `schedule` must outlive the session.
    BoardSession(Transport& transport, Schedule& schedule, const Credentials& credentials);
    BoardSession(const BoardSession&) = delete;
    BoardSession& operator=(const BoardSession&) = delete;

    // Calls end().
    ~BoardSession();

    // Returns the menu with its partitions. Throws Failure (REFUSED) if the user may neither back
    // up nor restore.
    BoardPage menu();

    // Makes a backup and returns the bytes of its file, unchecked.
    Bytes backUp(unsigned int partition);

    // Uploads a file. It stays on the board until restore() has used it or the session ends.
    Selection upload(const Bytes& file);

    // Restores the uploaded file; `stagedFile` is the one of its Selection. Throws Failure
    // (UNKNOWN) if the outcome is not known.
    void restore(const std::string& stagedFile, const std::vector<unsigned int>& partitions);

    // Discards an uploaded file that was not restored, and logs out, within the time reserved for
    // the cleanup. Returns a sentence for people about what failed; empty if nothing did.
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
