#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A button that runs a script.
class Button : public HTMLComponent {
public:
    // `clickHandler` is a script call in double quotes, such as "\"uploadFunction()\"". `width` is
    // the button's minimum width in characters; 0 means the width of its label.
    Button(const std::string& name, const std::string& label, const std::string& form, int width,
           const std::string& clickHandler, bool disabled);
    ~Button() override;

    void printHTML() const override;
    bool isError() const override;

private:
    std::string name;
    std::string label;
    std::string form;
    int width;
    std::string clickHandler;
    bool disabled;
};

}  // namespace VeskLib::Gui
