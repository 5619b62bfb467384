#include <VeskLib/Gui/Button.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

Button::Button(const std::string& name, const std::string& label, const std::string& form,
               int width, const std::string& clickHandler, bool disabled)
    : name(name),
      label(label),
      form(form),
      width(width),
      clickHandler(clickHandler),
      disabled(disabled) {
    objectMade(this, describe("Button", name, label, form, width, clickHandler, disabled));
}

Button::~Button() {
    objectDeleted(this);
}

void Button::printHTML() const {
    std::cout << describe("Button", name, label, form, width, clickHandler, disabled);
}

bool Button::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
