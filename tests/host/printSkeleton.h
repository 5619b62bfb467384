#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <functional>
#include <map>
#include <string>

namespace VeskLib::Test {

using Components = std::map<std::string, Gui::HTMLComponent*>;

// Prints a skeleton with this source and returns the output.
std::string print(const std::string& source, const Components& components = {});

// Same as print(), in a child process with a request for `language`.
std::string printIn(const std::string& language, const std::string& source);

// Same for the output of `work`. It runs in a child, because a process keeps the language and the
// nonce of its request.
std::string printedIn(const std::string& language, const std::function<void()>& work);

// Returns "line:column problem", or "" if the skeleton is well-formed.
std::string problemOf(const std::string& source);

}  // namespace VeskLib::Test
