#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <memory>
#include <vector>

namespace VeskLib::Gui {

// A list of components, printed in the order in which they were added.
class HTMLContainer : public HTMLComponent {
public:
    HTMLContainer() = default;

    // Appends `child` and takes ownership. The destructor deletes the children in this order.
    void add(std::unique_ptr<HTMLComponent> child);

    void printHTML() const override;
    bool isError() const override;

private:
    std::vector<std::unique_ptr<HTMLComponent>> children;

public:
    // If true, "<br>" is printed between the children. Declared last to match the layout of boards.
    bool breakBetween = false;
};

}  // namespace VeskLib::Gui
