#include <VeskLib/Gui/HiddenField.h>

#include "platform/host/html/attributes.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Gui {

using Host::printAttribute;
using Host::printText;

HiddenField::HiddenField(const std::string& name, const std::string& value, const std::string& form)
    : name(name), value(value), form(form) {
}

HiddenField::~HiddenField() = default;

void HiddenField::printHTML() const {
    printText("<input type=\"hidden\"");
    printAttribute("name", name);
    printAttribute("value", value);
    printAttribute("form", form);
    printText(">");
}

bool HiddenField::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
