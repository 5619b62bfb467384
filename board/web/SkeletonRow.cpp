#include "board/web/SkeletonRow.h"

#include "platform/host/text/Catalogue.h"

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/Gui/TextString.h>

namespace VeskLib::Board {

void SkeletonRow::print() const {
    Gui::HTMLCodeGenerator(skeleton, &components).printHTML();
}

void SkeletonRow::put(const std::string& name, const std::string& text) {
    if (!text.empty()) {
        owned.push_back(std::make_unique<Gui::TextString>(text));
        components[name] = owned.back().get();
    }
}

std::string caption(int number) {
    return Gui::MessageMgr(Host::requestLanguage()).getString(number);
}

}  // namespace VeskLib::Board
