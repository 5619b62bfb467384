#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A component that holds named components.
class HTMLItemInterface : public HTMLComponent {
public:
    // Puts `component` under `name`; the item owns it from then on and deletes what stood there.
    virtual void add(const std::string& name, HTMLComponent* component) = 0;
};

}  // namespace VeskLib::Gui
