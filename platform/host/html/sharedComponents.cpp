#include "platform/host/html/sharedComponents.h"

#include <VeskLib/Gui/TextString.h>

#include <map>
#include <memory>

namespace VeskLib::Host {

namespace {

std::map<std::string, std::unique_ptr<Gui::HTMLComponent>>& sharedComponents() {
    static std::map<std::string, std::unique_ptr<Gui::HTMLComponent>> components;
    return components;
}

}  // namespace

void shareText(const std::string& name, const std::string& text) {
    sharedComponents()[name] = std::make_unique<Gui::TextString>(text);
}

void unshare(const std::string& name) {
    sharedComponents().erase(name);
}

const Gui::HTMLComponent* findShared(const std::string& name) {
    const auto entry = sharedComponents().find(name);
    return entry == sharedComponents().end() ? nullptr : entry->second.get();
}

}  // namespace VeskLib::Host
