#include <VeskLib/Gui/HiddenField.h>

#include "platform/host/html/attributes.h"

#include <iostream>

namespace VeskLib::Gui {

using Host::printAttribute;

HiddenField::HiddenField(const std::string& name, const std::string& value, const std::string& form)
    : name(name), value(value), form(form) {
}

HiddenField::~HiddenField() = default;

void HiddenField::printHTML() const {
    std::cout << "<input type=\"hidden\"";
    printAttribute("name", name);
    printAttribute("value", value);
    printAttribute("form", form);
    std::cout << '>';
}

bool HiddenField::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
