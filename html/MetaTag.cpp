#include "html/MetaTag.h"

#include <iostream>

namespace VeskLib::Gui {

MetaTag::MetaTag(const std::string& name, const std::string& content, const std::string& contentUrl,
                 const std::string& reserved)
    : name(name), content(content), contentUrl(contentUrl), reserved(reserved) {
}

void MetaTag::printHTML() const {
    // The frame identifier, in exactly this spelling, is the only tag with a name attribute; every
    // other tag has http-equiv.
    std::cout << (name == "FRAME-ID" ? "<meta name=\"" : "<meta http-equiv=\"");
    std::cout << name << "\" content=\"" << content;
    if (!contentUrl.empty()) {
        std::cout << ";URL=" << contentUrl;
    }
    std::cout << "\">";
}

bool MetaTag::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
