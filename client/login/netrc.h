#pragma once

#include "client/login/Credentials.h"

#include <optional>
#include <string>
#include <string_view>

namespace Efictl {

// Returns what a netrc file of this text has for `host`, and for `user` unless that is empty: the
// first entry of the machine, or the default one.
std::optional<Credentials> findInNetrc(std::string_view text, const std::string& host,
                                       const std::string& user);

}  // namespace Efictl
