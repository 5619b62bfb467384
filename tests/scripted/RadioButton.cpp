#include <VeskLib/Gui/RadioButton.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

RadioButton::RadioButton(const std::string& name, const std::string& title, const std::string& form,
                         const int* displayMode)
    : name(name), title(title), form(form), displayMode(displayMode) {
    objectMade(this, describe("RadioButton", name, title, form));
}

RadioButton::~RadioButton() {
    objectDeleted(this);
}

void RadioButton::add(const std::string& value, const std::string& label, bool chosen,
                      bool disabled) {
    record(describe("RadioButton::add", value, label, chosen, disabled));
    choices.push_back({value, label, chosen, disabled});
}

// Prints "RadioButton(name, title, form, display mode){choice(value, label, chosen, disabled);}".
void RadioButton::printHTML() const {
    std::cout << describe("RadioButton", name, title, form, *displayMode) << "{";
    for (const Choice& choice : choices) {
        std::cout << describe("choice", choice.value, choice.label, choice.chosen, choice.disabled)
                  << ";";
    }
    std::cout << "}";
}

bool RadioButton::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
