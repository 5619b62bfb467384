#pragma once

#include "platform/host/html/Skeleton.h"

#include <string>

namespace VeskLib::Host {

constexpr const char* SHELL_SKELETON = "/usr/local/www/skel/skeleton_shell.txt";

// The skeleton in a file of the board, read once, however many rows of a table use it; it lives as
// long as the process. Throws SKELETON_NOT_USABLE, with the reason in the trace, when the file
// cannot be read, is too large or is malformed.
const Skeleton& findSkeleton(const std::string& skeletonFile);

// Plans to read this skeleton, the shell and the texts while the process waits for the back-end;
// only the first that is named, which is the page's.
void planSkeleton(const std::string& skeletonFile);

}  // namespace VeskLib::Host
