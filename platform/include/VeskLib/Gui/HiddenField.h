#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A hidden form field.
class HiddenField : public HTMLComponent {
public:
    HiddenField(const std::string& name, const std::string& value, const std::string& form);
    ~HiddenField() override;

    void printHTML() const override;
    bool isError() const override;

private:
    std::string name;
    std::string value;
    std::string form;
};

}  // namespace VeskLib::Gui
