#include "html/HTMLContainer.h"

#include <iostream>
#include <utility>

namespace VeskLib::Gui {

void HTMLContainer::add(std::unique_ptr<HTMLComponent> child) {
    children.push_back(std::move(child));
}

void HTMLContainer::printHTML() const {
    for (const auto& child : children) {
        child->printHTML();
        if (breakBetween && child != children.back()) {
            std::cout << "<br>";
        }
    }
}

bool HTMLContainer::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
