#pragma once

#include "client/login/Credentials.h"

#include <optional>
#include <string>
#include <string_view>

namespace Efictl {

// Returns the first entry in the text of a netrc file that has a password and is for `host` or the
// default, and for `user` unless that is empty. Returns nothing if there is none.
std::optional<Credentials> findInNetrc(std::string_view text, const std::string& host,
                                       const std::string& user);

}  // namespace Efictl
