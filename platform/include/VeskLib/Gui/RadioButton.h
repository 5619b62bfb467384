#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <vector>

namespace VeskLib::Gui {

// A group of radio buttons. Groups of the same name in one form act as one group.
class RadioButton : public HTMLComponent {
public:
    // `title` explains the choices to the operator; it may be empty. `displayMode` must outlive
    // the component; unless it is 2 when the component is printed, all choices are disabled.
    RadioButton(const std::string& name, const std::string& title, const std::string& form,
                const int* displayMode);
    ~RadioButton() override;

    void add(const std::string& value, const std::string& label, bool chosen, bool disabled);

    void printHTML() const override;
    bool isError() const override;

private:
    struct Choice {
        std::string value;
        std::string label;
        bool chosen;
        bool disabled;
    };

    std::string name;
    std::string title;
    std::string form;
    const int* displayMode;
    std::vector<Choice> choices;
};

}  // namespace VeskLib::Gui
