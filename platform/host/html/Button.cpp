#include <VeskLib/Gui/Button.h>

#include "platform/host/html/attributes.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

#include <string_view>

namespace VeskLib::Gui {

using Host::printAttribute;
using Host::printEscaped;
using Host::printText;

namespace {

// Returns the call without the double quotes that the program puts around it.
std::string_view unquote(std::string_view call) {
    const bool quoted = call.size() >= 2 && call.front() == '"' && call.back() == '"';
    return quoted ? call.substr(1, call.size() - 2) : call;
}

}  // namespace

Button::Button(const std::string& name, const std::string& label, const std::string& form,
               int width, const std::string& clickHandler, bool disabled)
    : name(name),
      label(label),
      form(form),
      width(width),
      clickHandler(clickHandler),
      disabled(disabled) {
}

Button::~Button() = default;

void Button::printHTML() const {
    printText("<button type=\"button\"");
    printAttribute("id", name);
    printAttribute("name", name);
    printAttribute("form", form);
    printAttribute(Host::CLICK_ATTRIBUTE, unquote(clickHandler));
    if (width > 0) {
        printAttribute("data-width", std::to_string(width));
    }
    if (disabled) {
        printText(" disabled");
    }
    printText(">");
    printEscaped(label);
    printText("</button>");
}

bool Button::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
