#include <VeskLib/Gui/HiddenField.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

HiddenField::HiddenField(const std::string& name, const std::string& value, const std::string& form)
    : name(name), value(value), form(form) {
    objectMade(this, describe("HiddenField", name, value, form));
}

HiddenField::~HiddenField() {
    objectDeleted(this);
}

void HiddenField::printHTML() const {
    std::cout << describe("HiddenField", name, value, form);
}

bool HiddenField::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
