#include <VeskLib/Gui/RadioButton.h>

#include "platform/host/html/attributes.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Gui {

using Host::printAttribute;
using Host::printEscaped;
using Host::printText;

RadioButton::RadioButton(const std::string& name, const std::string& title, const std::string& form,
                         const int* displayMode)
    : name(name), title(title), form(form), displayMode(displayMode) {
}

RadioButton::~RadioButton() = default;

void RadioButton::add(const std::string& value, const std::string& label, bool chosen,
                      bool disabled) {
    choices.push_back({value, label, chosen, disabled});
}

void RadioButton::printHTML() const {
    for (const Choice& choice : choices) {
        const std::string identifier = name + "_" + choice.value;
        printText("<input type=\"radio\"");
        printAttribute("id", identifier);
        printAttribute("name", name);
        printAttribute("value", choice.value);
        printAttribute("form", form);
        if (!title.empty()) {
            printAttribute("title", title);
        }
        if (choice.chosen) {
            printText(" checked");
        }
        if (choice.disabled || *displayMode != 2) {
            printText(" disabled");
        }
        printText(">");
        if (!choice.label.empty()) {
            printText("<label");
            printAttribute("for", identifier);
            printText(">");
            printEscaped(choice.label);
            printText("</label>");
        }
    }
}

bool RadioButton::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
