#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <memory>
#include <string>

namespace VeskLib::Gui {

// The two ends of a component's life in a map, for every holder of a map.

// Puts `component` into `components` under `name`; the map owns it from then on.
void insertComponent(std::map<std::string, HTMLComponent*>& components, const std::string& name,
                     std::unique_ptr<HTMLComponent> component);

// Deletes every component in the map's order and empties the map. Entries that hold no component
// are passed over.
void deleteComponents(std::map<std::string, HTMLComponent*>& components);

}  // namespace VeskLib::Gui
