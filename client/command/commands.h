#pragma once

#include "client/command/Options.h"
#include "client/report/Result.h"

namespace Efictl {

// The commands. Each adds what it has done to `result`, and throws Failure if it cannot continue.
void listPartitions(const Options& options, Result& result);
void backUpPartitions(const Options& options, Result& result);
void restorePartitions(const Options& options, Result& result);
void diffPartitions(const Options& options, Result& result);
void verifyFolder(const Options& options, Result& result);

}  // namespace Efictl
