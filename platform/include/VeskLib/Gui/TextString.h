#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A text.
class TextString : public HTMLComponent {
public:
    // The text is escaped for HTML unless `readyToPrint` is set. Set it for markup, and for a text
    // that the skeleton escapes itself, such as one in a script. `emphasized` prints the text in
    // bold or the like. `size` is the platform's text size; 6 is normal.
    explicit TextString(const std::string& text, bool emphasized = false, bool readyToPrint = false,
                        int size = 6);
    ~TextString() override;

    void printHTML() const override;
    bool isError() const override;

private:
    std::string text;
    bool emphasized;
    bool readyToPrint;
    int size;
};

}  // namespace VeskLib::Gui
