#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// Lets the operator choose one file of their computer for upload.
class SelectFile : public HTMLComponent {
public:
    // `accept` names the kinds of files the browser offers first, empty for all. `width` is that of
    // the field in characters. `longestName` limits the file's name, 0 for no limit.
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
