#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <vector>

namespace VeskLib::Gui {

// A script function that makes its calls in the order in which they were added. The text of an
// alert is printed on the page as well, so that it can be read again.
class JsFunction : public HTMLComponent {
public:
    // `name` includes the parentheses: "onLoadFunction()".
    explicit JsFunction(const std::string& name);
    ~JsFunction() override;

    // Appends a call, such as "initialize()".
    void addFunction(const std::string& call);

    // Appends a browser alert that shows `text`. "<br>" in `text` is a line break.
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
