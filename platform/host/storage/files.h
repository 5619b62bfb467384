#pragma once

#include <sys/stat.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace VeskLib::Host {

// Reads the whole regular file `path`, at most `limit` bytes. Does not follow symbolic links.
// Returns false with errno set, and leaves `bytes` unchanged, if the file cannot be read, is not a
// regular file (EINVAL) or is larger than `limit` (EFBIG).
bool readFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes);

// Like readFile(), for a file that only the board's own programs write. Also sets `status`. Fails
// with EPERM if, and only if, the file belongs to another user. After a failure `status` is
// undefined.
bool readOwnFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes,
                 struct stat& status);

// Like readFile(), for an open file. Reads from the start of the file, whatever the current
// offset.
bool readOpenFile(int descriptor, std::size_t limit, std::vector<unsigned char>& bytes);

// Fills `place` from an open file, starting at `position`. Sets `filled` to the number of bytes
// read, which is less than the size of `place` if the file ends before. Returns false, with errno
// set, if the file cannot be read.
bool readSpan(int descriptor, std::size_t position, std::span<unsigned char> place,
              std::size_t& filled);

// Like readOpenFile(), but passes the bytes to `take` piece by piece. Some bytes may have been
// passed when it returns false. An exception of `take` stops the reading and is passed on.
bool readPieces(int descriptor, std::size_t limit,
                const std::function<void(const unsigned char*, std::size_t)>& take);

// Opens `path` for reading. Does not follow a symbolic link and does not wait for the writer of a
// pipe. Returns -1, with errno set, on failure.
int openForReading(const std::string& path);

// Opens a file for reading in pieces, with the checks and errors of readOwnFile(). Returns -1 on
// failure.
int openOwnFile(const std::string& path, std::size_t limit, struct stat& status);

// Replaces `path` atomically by a file with these bytes: writes and syncs a temporary file, renames
// it, and syncs the folder. `mode` is not reduced by the umask. Calls `isWanted` immediately before
// the rename; if that returns false, fails with ECANCELED.
//
// Returns false, with errno set, if any step fails; `path` is then unchanged and the temporary file
// is removed. However, if only syncing the folder fails, `path` has the new bytes, but they may not
// survive a power failure.
bool replaceFile(
    const std::string& path, const std::vector<unsigned char>& bytes, int mode,
    const std::function<bool()>& isWanted = [] { return true; });

// Links an open unnamed file (O_TMPFILE) to `path`, which must not exist. Returns false, with errno
// set, on failure.
bool nameFile(int descriptor, const std::string& path);

// Creates the file `path`, which must not exist, with these bytes, and syncs it as replaceFile()
// does. The file is unnamed until it is complete, so that a killed process leaves no partial file.
// Returns false, with errno set, if any step fails; no file is created then.
bool createFile(const std::string& path, const std::vector<unsigned char>& bytes, int mode);

// Returns the names in a folder in any order, including "." and "..". Returns an empty vector if
// the folder cannot be read.
std::vector<std::string> listNames(const std::string& folder);

// Returns the path of `name` in `folder`.
std::string pathIn(const std::string& folder, const std::string& name);

// Removes the temporary files that killed processes left in replaceFile(), for all paths that begin
// with `pathStart`. No other process may be replacing these paths at the same time.
void removeFilesAside(const std::string& pathStart);

}  // namespace VeskLib::Host
