#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A meta tag of the page's head. Its texts are printed as they are, without escaping.
class MetaTag : public HTMLComponent {
public:
    // The content is followed by ";URL=" and `contentUrl` when that is not empty. `reserved` is
    // kept and never printed.
    MetaTag(const std::string& name, const std::string& content, const std::string& contentUrl,
            const std::string& reserved);

    void printHTML() const override;
    bool isError() const override;

private:
    std::string name;
    std::string content;
    std::string contentUrl;
    std::string reserved;
};

}  // namespace VeskLib::Gui
