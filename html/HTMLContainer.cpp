#include "html/HTMLContainer.h"

#include <iostream>

namespace VeskLib::Gui {

HTMLContainer::~HTMLContainer() {
    for (const HTMLComponent* child : children) {
        delete child;
    }
}

void HTMLContainer::add(std::unique_ptr<HTMLComponent> child) {
    children.push_back(child.get());
    static_cast<void>(child.release());
}

void HTMLContainer::printHTML() const {
    for (const HTMLComponent* child : children) {
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
