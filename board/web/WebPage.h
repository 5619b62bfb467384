#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Board {

// A page of the board's own: the skeleton of its body inside the frame that all of them share.
class WebPage {
public:
    // `bodySkeleton` is the board's path of the body's skeleton, `titleCaption` the number of the
    // caption that names the page.
    WebPage(const std::string& bodySkeleton, int titleCaption);
    WebPage(const WebPage&) = delete;
    WebPage& operator=(const WebPage&) = delete;
    ~WebPage();

    // Puts a text at the place `name`, escaped. A place takes one text.
    void putText(const std::string& name, const std::string& text);

    // Puts a caption of the catalogue at the place `name`.
    void putCaption(const std::string& name, int caption);

    // Puts a notice of a refused request at the place `name`. `detail`, unless it is 0, is at the
    // end of the caption, so that support can find the cause.
    void putNotice(const std::string& name, int caption, int detail = 0);

    // Puts a component at the place `name`.
    void put(const std::string& name, std::unique_ptr<Gui::HTMLComponent> component);

    // Prints the page to std::cout. Throws PException when a skeleton cannot be used.
    void print() const;

private:
    std::vector<std::unique_ptr<Gui::HTMLComponent>> owned;
    std::map<std::string, Gui::HTMLComponent*> components;
};

}  // namespace VeskLib::Board
