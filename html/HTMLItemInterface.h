#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A component that contains other components, each with a name.
class HTMLItemInterface : public HTMLComponent {
public:
    // Adds `component` under `name` and takes ownership. Deletes a component that had this name
    // before.
    virtual void add(const std::string& name, HTMLComponent* component) = 0;
};

}  // namespace VeskLib::Gui
