#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Gui {

// A <meta> tag. Its texts are printed without escaping.
class MetaTag : public HTMLComponent {
public:
    // Unless `contentUrl` is empty, ";URL=" and `contentUrl` follow the content. `reserved` is
    // never printed.
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
