#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <memory>
#include <vector>

namespace VeskLib::Gui {

// An ordered list of components, printed back to back.
class HTMLContainer : public HTMLComponent {
public:
    HTMLContainer() = default;

    // Appends `child` and takes ownership. The destructor deletes the children in order.
    void add(std::unique_ptr<HTMLComponent> child);

    void printHTML() const override;
    bool isError() const override;

private:
    std::vector<std::unique_ptr<HTMLComponent>> children;

public:
    // Whether "<br>" is printed between two children. Declared last, as boards lay the object out.
    bool breakBetween = false;
};

}  // namespace VeskLib::Gui
