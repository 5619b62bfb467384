#include <VeskLib/Gui/JsFunction.h>

#include "tests/scripted/Recorder.h"

#include <iostream>
#include <utility>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

JsFunction::JsFunction(const std::string& name) : name(name) {
    objectMade(this, describe("JsFunction", name));
}

JsFunction::~JsFunction() {
    objectDeleted(this);
}

void JsFunction::addFunction(const std::string& call) {
    record("addFunction " + call);
    calls.push_back({false, call});
}

void JsFunction::addAlertFunction(std::string text) {
    record("addAlertFunction " + text);
    calls.push_back({true, std::move(text)});
}

// Prints "JsFunction(name){call;alert(text);}".
void JsFunction::printHTML() const {
    std::cout << describe("JsFunction", name) << "{";
    for (const Call& call : calls) {
        std::cout << (call.alert ? describe("alert", call.text) : call.text) << ";";
    }
    std::cout << "}";
}

bool JsFunction::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
