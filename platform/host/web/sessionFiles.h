#pragma once

namespace VeskLib::Host {

// A session's files between requests, its backup and its staged file, are written by the program's
// own system calls. These surround a request that may change them.

// Before the request's work: refuses what lies in the place of one of the files and is not a
// regular file of the board's own, since the program would follow a link and wait for a pipe.
// Throws PException (SESSION_FILE_REFUSED), and traces the path. Also notes what is staged, for
// settleSessionFiles().
void checkSessionFiles();

// After the request's work: removes what a user without the right left behind, and what was written
// for a session that ended meanwhile, and records an upload or a discard. Throws PException when
// that cannot be recorded; an upload is removed then.
void settleSessionFiles();

}  // namespace VeskLib::Host
