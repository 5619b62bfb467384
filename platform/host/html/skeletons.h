#pragma once

#include "platform/host/html/Skeleton.h"

#include <string>

namespace VeskLib::Host {

constexpr const char* SHELL_SKELETON = "/usr/local/www/skel/skeleton_shell.txt";

// Returns the skeleton in a file of the board, which is read only once and lives as long as the
// process. Throws PException (SKELETON_NOT_USABLE), with the reason in the trace, if the file
// cannot be read, is too large or is malformed.
const Skeleton& findSkeleton(const std::string& skeletonFile);

// Plans to read this skeleton, the shell and the texts while the process waits for the back-end.
// Only the first call has an effect, because it names the page's skeleton.
void planSkeleton(const std::string& skeletonFile);

}  // namespace VeskLib::Host
