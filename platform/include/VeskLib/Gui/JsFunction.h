#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <vector>

namespace VeskLib::Gui {

// A script function, made of calls that run in the order in which they were added. A text that is
// shown as an alert stands on the page as well, so that it can be read again.
class JsFunction : public HTMLComponent {
public:
    // `name` with its parentheses, such as "onLoadFunction()".
    explicit JsFunction(const std::string& name);
    ~JsFunction() override;

    // Appends a call, such as "initialize()".
    void addFunction(const std::string& call);

    // Appends a browser alert that shows `text`; "<br>" in it separates lines.
    void addAlertFunction(std::string text);

    void printHTML() const override;
    bool isError() const override;

private:
    struct Call {
        bool alert;
        std::string text;
    };

    std::string name;
    std::vector<Call> calls;
};

}  // namespace VeskLib::Gui
