#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <functional>
#include <map>
#include <string>

namespace VeskLib::Test {

using Components = std::map<std::string, Gui::HTMLComponent*>;

// Returns what the skeleton with this source prints.
std::string print(const std::string& source, const Components& components = {});

// Same as print(), in a child process with a request for `language`.
std::string printIn(const std::string& language, const std::string& source);

// Returns what `work` prints in such a process. It needs a child, because a process keeps the
// language and the nonce of its request.
std::string printedIn(const std::string& language, const std::function<void()>& work);

// Returns "line:column problem", or "" if the skeleton is well-formed.
std::string problemOf(const std::string& source);

}  // namespace VeskLib::Test
