#pragma once

#include "client/command/Options.h"
#include "client/report/Result.h"

namespace Efictl {

// The commands. Each puts what it does into `result` as it goes, and throws Failure for what ends
// it early.
void listPartitions(const Options& options, Result& result);
void backUpPartitions(const Options& options, Result& result);
void restorePartitions(const Options& options, Result& result);
void diffPartitions(const Options& options, Result& result);
void verifyFolder(const Options& options, Result& result);

}  // namespace Efictl
