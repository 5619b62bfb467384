#pragma once

#include "client/command/Options.h"
#include "client/report/Result.h"

namespace Efictl {

// The commands. Each adds to `result` what it has done, and throws Failure if it cannot go on.
void listPartitions(const Options& options, Result& result);
void backUpPartitions(const Options& options, Result& result);
void restorePartitions(const Options& options, Result& result);
void diffPartitions(const Options& options, Result& result);
void verifyFolder(const Options& options, Result& result);

}  // namespace Efictl
