#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <memory>
#include <string>

namespace VeskLib::Gui {

// Adds `component` to `components` under `name`. The map takes ownership, and deletes a component
// that had this name before.
void insertComponent(std::map<std::string, HTMLComponent*>& components, const std::string& name,
                     std::unique_ptr<HTMLComponent> component);

// Deletes all components in the map's order and clears the map. An entry may be null.
void deleteComponents(std::map<std::string, HTMLComponent*>& components);

}  // namespace VeskLib::Gui
