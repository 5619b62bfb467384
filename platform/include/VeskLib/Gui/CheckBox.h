#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <vector>

namespace VeskLib::Gui {

// A list of independent check boxes.
class CheckBox : public HTMLComponent {
public:
    // `title` explains the boxes to the operator; `describedBy` is the identifier of an element
    // that describes them. Either may be empty. `displayMode` must outlive the component; unless
    // it is 2 when the component is printed, all boxes are disabled.
    CheckBox(const std::string& title, const std::string& describedBy, const std::string& form,
             const int* displayMode);
    ~CheckBox() override;

    // Adds a box. `hint` explains this one box; it may be empty.
    void add(const std::string& name, const std::string& value, const std::string& label,
             const std::string& hint, bool ticked, bool disabled);

    // Sets the script call that a click on any box runs, such as "switchField()".
    void setClickHandler(const std::string& call);

    void printHTML() const override;
    bool isError() const override;

private:
    struct Box {
        std::string name;
        std::string value;
        std::string label;
        std::string hint;
        bool ticked;
        bool disabled;
    };

    std::string title;
    std::string describedBy;
    std::string form;
    const int* displayMode;
    std::string clickHandler;
    std::vector<Box> boxes;
};

}  // namespace VeskLib::Gui
