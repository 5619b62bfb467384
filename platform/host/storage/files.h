#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// Reads the regular file `path` whole, at most `limit` bytes; links are not followed. False, with
// `bytes` unchanged, when it cannot be read, is no regular file or is larger; errno then tells
// why.
bool readFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes);

// Replaces `path` by a file with these bytes: written aside, synced, renamed, the folder synced.
// `mode` is not reduced by the umask. False when any step failed; `path` is then as before and
// nothing is left behind.
bool replaceFile(const std::string& path, const std::vector<unsigned char>& bytes, int mode);

}  // namespace VeskLib::Host
