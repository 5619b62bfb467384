#include <VeskLib/Gui/JsFunction.h>

#include "platform/host/base/scriptNonce.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/messageLines.h"

#include <iostream>
#include <utility>

namespace VeskLib::Gui {

JsFunction::JsFunction(const std::string& name) : name(name) {
}

JsFunction::~JsFunction() = default;

void JsFunction::addFunction(const std::string& call) {
    calls.push_back({false, call});
}

void JsFunction::addAlertFunction(std::string text) {
    calls.push_back({true, std::move(text)});
}

void JsFunction::printHTML() const {
    std::cout << "<script nonce=\"" << Host::scriptNonce() << "\">\nfunction " << name << " {\n";
    for (const Call& call : calls) {
        if (!call.alert) {
            std::cout << "    " << call.text << ";\n";
            continue;
        }
        std::string lines;
        for (const std::string& line : Host::splitMessage(call.text)) {
            lines += (lines.empty() ? "" : "\\n") + Host::escapeScript(line);
        }
        std::cout << "    alert(\"" << lines << "\");\n";
    }
    std::cout << "}\n</script>\n";
    for (const Call& call : calls) {
        if (call.alert) {
            Host::printNotice(call.text, Host::Outcome::UNTOLD);
        }
    }
}

bool JsFunction::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
