#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A file input, with which the operator chooses one file to upload.
class SelectFile : public HTMLComponent {
public:
    // `accept` lists the file types that the browser offers first; empty means all. `width` is the
    // field's width in characters. `longestName` is the maximum length of the file's name; 0 means
    // no limit.
    SelectFile(const std::string& name, const std::string& accept, const std::string& form,
               int width, int longestName);
    ~SelectFile() override;

    void printHTML() const override;
    bool isError() const override;

private:
    std::string name;
    std::string accept;
    std::string form;
    int width;
    int longestName;
};

}  // namespace VeskLib::Gui
