#include "platform/host/storage/biosVersion.h"

namespace VeskLib::Host {

namespace {

std::string_view majorNumber(std::string_view version) {
    return version.substr(0, version.find('.'));
}

}  // namespace

bool isKnownVersion(std::string_view version) {
    return !version.starts_with('-');
}

bool fitTogether(std::string_view file, std::string_view target) {
    return !isKnownVersion(file) || !isKnownVersion(target) ||
           majorNumber(file) == majorNumber(target);
}

}  // namespace VeskLib::Host
