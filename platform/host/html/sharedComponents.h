#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Components that every skeleton of this process finds, whatever page it belongs to: what the
// header of a page says. A component of the page's own map comes before one of the same name.

// Makes `name` a component that prints `text`, escaped; one that had the name is replaced.
void shareText(std::string_view name, const std::string& text);

// Removes the component `name`, if there is one.
void unshare(std::string_view name);

// Returns the shared component `name`, or null. It stays valid until the name is shared again or
// removed.
const Gui::HTMLComponent* findShared(std::string_view name);

}  // namespace VeskLib::Host
