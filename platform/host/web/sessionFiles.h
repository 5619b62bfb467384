#pragma once

namespace VeskLib::Host {

// Between requests, a session has two files, its backup and its staged file. The program writes
// them by its own system calls, so these functions are called before and after a request that may
// change them.

// Called before the request is processed. Throws PException (SESSION_FILE_REFUSED) and traces the
// path if anything but a regular file of the board's own is in the place of one of the files,
// because the program would follow a link and block on a pipe. Also notes which file is staged, for
// settleSessionFiles().
void checkSessionFiles();

// Called after the request has been processed. Removes files that the user has no right to or that
// were written for a session that has ended meanwhile, and records an upload or a discard. Throws
// PException if that cannot be recorded; an upload is then removed.
void settleSessionFiles();

}  // namespace VeskLib::Host
