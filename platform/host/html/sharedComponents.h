#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Components of the page header. Every skeleton that this process prints can use them. A component
// of the same name in the page's own map takes precedence.

// Adds a component `name` that prints `text`, escaped. Replaces one with the same name.
void shareText(std::string_view name, const std::string& text);

// Removes the component `name`, if there is one.
void unshare(std::string_view name);

// Returns the shared component `name`, or null. It stays valid until the name is shared again or
// removed.
const Gui::HTMLComponent* findShared(std::string_view name);

}  // namespace VeskLib::Host
