#pragma once

#include "client/login/Credentials.h"

#include <optional>
#include <string>
#include <string_view>

namespace Efictl {

// Returns the first entry for `host`, or the default entry, in the text of a netrc file; only one
// for `user`, unless that is empty. Returns nothing if there is none with a password.
std::optional<Credentials> findInNetrc(std::string_view text, const std::string& host,
                                       const std::string& user);

}  // namespace Efictl
