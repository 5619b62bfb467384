#include <VeskLib/Gui/CheckBox.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

CheckBox::CheckBox(const std::string& title, const std::string& describedBy,
                   const std::string& form, const int* displayMode)
    : title(title), describedBy(describedBy), form(form), displayMode(displayMode) {
    objectMade(this, describe("CheckBox", title, describedBy, form));
}

CheckBox::~CheckBox() {
    objectDeleted(this);
}

void CheckBox::add(const std::string& name, const std::string& value, const std::string& label,
                   const std::string& hint, bool ticked, bool disabled) {
    record(describe("CheckBox::add", name, value, label, hint, ticked, disabled));
    boxes.push_back({name, value, label, hint, ticked, disabled});
}

void CheckBox::setClickHandler(const std::string& call) {
    record("setClickHandler " + call);
    clickHandler = call;
}

// Prints "CheckBox(title, described by, form, display mode){box(name, value, label, hint, ticked,
// disabled);}", followed by "click(call)" if there is a click handler.
void CheckBox::printHTML() const {
    std::cout << describe("CheckBox", title, describedBy, form, *displayMode) << "{";
    for (const Box& box : boxes) {
        std::cout << describe("box", box.name, box.value, box.label, box.hint, box.ticked,
                              box.disabled)
                  << ";";
    }
    std::cout << "}";
    if (!clickHandler.empty()) {
        std::cout << describe("click", clickHandler);
    }
}

bool CheckBox::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
