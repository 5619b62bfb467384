#include "platform/host/html/sharedComponents.h"

#include <VeskLib/Gui/TextString.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace VeskLib::Host {

namespace {

struct Shared {
    std::string name;
    std::unique_ptr<Gui::HTMLComponent> component;
};

// Few, so that a linear search will do.
std::vector<Shared>& sharedComponents() {
    static std::vector<Shared> components;
    return components;
}

std::vector<Shared>::iterator find(std::string_view name) {
    return std::ranges::find(sharedComponents(), name, &Shared::name);
}

}  // namespace

void shareText(std::string_view name, const std::string& text) {
    auto component = std::make_unique<Gui::TextString>(text);
    const auto known = find(name);
    if (known != sharedComponents().end()) {
        known->component = std::move(component);
    } else {
        sharedComponents().push_back({std::string(name), std::move(component)});
    }
}

void unshare(std::string_view name) {
    std::erase_if(sharedComponents(), [name](const Shared& shared) { return shared.name == name; });
}

const Gui::HTMLComponent* findShared(std::string_view name) {
    const auto known = find(name);
    return known == sharedComponents().end() ? nullptr : known->component.get();
}

}  // namespace VeskLib::Host
