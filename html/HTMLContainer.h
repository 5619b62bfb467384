#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <memory>
#include <vector>

namespace VeskLib::Gui {

// An ordered list of components, printed back to back.
class HTMLContainer : public HTMLComponent {
public:
    HTMLContainer() = default;

    // Deletes the children in order.
    ~HTMLContainer() override;

    // Appends `child`, which the container owns from then on.
    void add(std::unique_ptr<HTMLComponent> child);

    void printHTML() const override;
    bool isError() const override;

    // Whether "<br>" stands between two children.
    bool breakBetween = false;

private:
    std::vector<HTMLComponent*> children;
};

}  // namespace VeskLib::Gui
