#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <vector>

namespace VeskLib::Gui {

// Boxes that the operator ticks, each on its own.
class CheckBox : public HTMLComponent {
public:
    // `title` explains the boxes to the operator and `describedBy` is the identifier of an element
    // that describes them; either may be empty. `displayMode` must outlive the component; while it
    // is not 2 the boxes cannot be ticked.
    CheckBox(const std::string& title, const std::string& describedBy, const std::string& form,
             const int* displayMode);
    ~CheckBox() override;

    // `hint` explains this one box; it may be empty.
    void add(const std::string& name, const std::string& value, const std::string& label,
             const std::string& hint, bool ticked, bool disabled);

    // The script call that a click on a box runs, such as "switchField()".
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
