#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Board {

// One of the board's own pages: the skeleton of its body in the frame that all pages share.
class WebPage {
public:
    // `bodySkeleton` is the path of the body's skeleton on the board, `titleCaption` the number of
    // the page's title.
    WebPage(const std::string& bodySkeleton, int titleCaption);
    WebPage(const WebPage&) = delete;
    WebPage& operator=(const WebPage&) = delete;
    ~WebPage();

    // Adds a text as component `name`, escaped. Each name can be used once.
    void putText(const std::string& name, const std::string& text);

    // Adds a caption of the catalogue as component `name`.
    void putCaption(const std::string& name, int caption);

    // Adds a notice of a refused request as component `name`. `detail`, unless it is 0, is appended
    // to the caption, so that support can find the cause.
    void putNotice(const std::string& name, int caption, int detail = 0);

    // Adds a component under `name` and takes ownership.
    void put(const std::string& name, std::unique_ptr<Gui::HTMLComponent> component);

    // Prints the page to std::cout. Throws PException if a skeleton cannot be used.
    void print() const;

private:
    std::vector<std::unique_ptr<Gui::HTMLComponent>> owned;
    std::map<std::string, Gui::HTMLComponent*> components;
};

}  // namespace VeskLib::Board
