#pragma once

#include <string>

namespace VeskLib::Host {

// Appends `text`, one or more whole lines, to the log `path` in one write, so that lines of several
// processes never mix. A log that is made is of mode 0600. One that has grown to 1 MiB first
// becomes `path` + ".1", in place of the one before it: each takes at most 1 MiB and what was
// appended last, however much comes. A log that cannot be written, or is no regular file, is passed
// over.
void appendToLog(const std::string& path, const std::string& text);

}  // namespace VeskLib::Host
