#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A text. It is escaped for HTML, unless `readyToPrint` says that it is markup already, or a text
// that the skeleton makes safe for another place.
class TextString : public HTMLComponent {
public:
    // `emphasized` sets the text off from its surroundings. `size` is the platform's text size,
    // 6 for plain text.
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
