#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Host {

// Components that every skeleton of this process finds, whatever page it belongs to: what the
// header of a page says. A component of the page's own map comes before one of the same name.

// Makes `name` a component that prints `text`, escaped; one that had the name is replaced.
void shareText(const std::string& name, const std::string& text);

// Removes the component `name`, if there is one.
void unshare(const std::string& name);

// Returns the shared component `name`, or null. It stays valid until the name is shared again or
// removed.
const Gui::HTMLComponent* findShared(const std::string& name);

}  // namespace VeskLib::Host
