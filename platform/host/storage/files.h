#pragma once

#include <sys/stat.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace VeskLib::Host {

// Reads the regular file `path` whole, at most `limit` bytes; links are not followed. False, with
// `bytes` unchanged, when it cannot be read, is no regular file or is larger; errno then tells
// why (EINVAL: no regular file; EFBIG: larger).
bool readFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes);

// The same for a file that only the board's own programs write. errno is EPERM exactly when it
// belongs to another user. After a failure `status` is undefined.
bool readOwnFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes,
                 struct stat& status);

// The same for a file that is open, from its start whatever its offset.
bool readOpenFile(int descriptor, std::size_t limit, std::vector<unsigned char>& bytes);

// Fills `place` from an open file, from `position` on. False, with errno set, when it cannot be
// read. `filled` is how many bytes there were: fewer when the file ends before.
bool readSpan(int descriptor, std::size_t position, std::span<unsigned char> place,
              std::size_t& filled);

// The same as readOpenFile(), handing the bytes on piece by piece in place of keeping them. When it
// returns false, some may have been handed on. What `take` throws passes through; nothing more is
// read then.
bool readPieces(int descriptor, std::size_t limit,
                const std::function<void(const unsigned char*, std::size_t)>& take);

// Opens `path` for reading without following a link and without waiting for a pipe's writer. -1,
// with errno set, when it cannot be opened.
int openForReading(const std::string& path);

// Opens such a file as readOwnFile() does, for reading it in pieces.
int openOwnFile(const std::string& path, std::size_t limit, struct stat& status);

// Replaces `path` by a file with these bytes: written aside, synced, renamed, the folder synced.
// `mode` is not reduced by the umask. `isWanted` is asked directly before the rename; when it says
// no, that counts as a failure (ECANCELED). False when any step failed; errno then tells why,
// `path` is as before and nothing is left behind. Only when the folder cannot be synced does `path`
// hold the new bytes all the same: they are stored, but may not outlive a power cut.
bool replaceFile(
    const std::string& path, const std::vector<unsigned char>& bytes, int mode,
    const std::function<bool()>& isWanted = [] { return true; });

// Gives an open file that was made without a name this one, where there is nothing yet. False when
// that fails; errno then tells why.
bool nameFile(int descriptor, const std::string& path);

// Makes `path`, where there is nothing yet, a file with these bytes, synced as replaceFile() does.
// The file has no name until it is whole, so that a process that is killed leaves nothing behind.
// False when any step failed; errno then tells why, and nothing was made.
bool createFile(const std::string& path, const std::vector<unsigned char>& bytes, int mode);

// The names in a folder, "." and ".." too, in no order; none when it cannot be read.
std::vector<std::string> listNames(const std::string& folder);

// The path of `name` in a folder.
std::string pathIn(const std::string& folder, const std::string& name);

// Removes what a replaceFile() left aside when its process was killed, for every path that begins
// with `pathStart`. Only for paths that no other process is replacing at the same time.
void removeFilesAside(const std::string& pathStart);

}  // namespace VeskLib::Host
