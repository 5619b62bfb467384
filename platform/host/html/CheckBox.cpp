#include <VeskLib/Gui/CheckBox.h>

#include "platform/host/html/attributes.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Gui {

using Host::printAttribute;
using Host::printEscaped;
using Host::printText;

CheckBox::CheckBox(const std::string& title, const std::string& describedBy,
                   const std::string& form, const int* displayMode)
    : title(title), describedBy(describedBy), form(form), displayMode(displayMode) {
}

CheckBox::~CheckBox() = default;

void CheckBox::add(const std::string& name, const std::string& value, const std::string& label,
                   const std::string& hint, bool ticked, bool disabled) {
    boxes.push_back({name, value, label, hint, ticked, disabled});
}

void CheckBox::setClickHandler(const std::string& call) {
    clickHandler = call;
}

void CheckBox::printHTML() const {
    for (const Box& box : boxes) {
        printText("<input type=\"checkbox\"");
        printAttribute("id", box.name);
        printAttribute("name", box.name);
        printAttribute("value", box.value);
        printAttribute("form", form);
        if (!box.hint.empty() || !title.empty()) {
            printAttribute("title", box.hint.empty() ? title : box.hint);
        }
        if (!describedBy.empty()) {
            printAttribute("aria-describedby", describedBy);
        }
        if (!clickHandler.empty()) {
            printAttribute(Host::CLICK_ATTRIBUTE, clickHandler);
        }
        if (box.ticked) {
            printText(" checked");
        }
        if (box.disabled || *displayMode != 2) {
            printText(" disabled");
        }
        printText(">");
        if (!box.label.empty()) {
            printText("<label");
            printAttribute("for", box.name);
            printText(">");
            printEscaped(box.label);
            printText("</label>");
        }
    }
}

bool CheckBox::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
