#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <functional>
#include <map>
#include <string>

namespace VeskLib::Test {

using Components = std::map<std::string, Gui::HTMLComponent*>;

// What the skeleton of this source prints.
std::string print(const std::string& source, const Components& components = {});

// Prints it in a process of its own, whose request asks for `language`.
std::string printIn(const std::string& language, const std::string& source);

// What `work` prints in such a process. A process keeps the language and the nonce of its request.
std::string printedIn(const std::string& language, const std::function<void()>& work);

// "line:column problem", or "" for a sound skeleton.
std::string problemOf(const std::string& source);

}  // namespace VeskLib::Test
