#pragma once

#include <string>

namespace VeskLib::Host {

// Appends `text`, one or more complete lines, to the log `path` in one write, so that the lines of
// several processes never mix. Creates the log with mode 0600. If the log has reached 1 MiB, first
// renames it to `path` + ".1", replacing an earlier one; each of the two files therefore has at
// most 1 MiB plus the last text appended. Does nothing if the log cannot be written or is not a
// regular file.
void appendToLog(const std::string& path, const std::string& text);

}  // namespace VeskLib::Host
