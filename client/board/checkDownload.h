#pragma once

#include "client/http/Transport.h"
#include "client/page/BoardPage.h"
#include "platform/host/storage/ConfigurationFile.h"

namespace Efictl {

// Decodes a download. Throws Failure (UNREACHABLE) if it is not a complete configuration file of
// this partition and its BIOS version.
VeskLib::Host::ConfigurationFile checkDownload(const Bytes& bytes, const PartitionRow& partition);

}  // namespace Efictl
