#include "platform/host/base/stagedFile.h"

namespace VeskLib::Host {

namespace {

const std::size_t NAME_LENGTH = 64;

std::string& shown() {
    static std::string name;
    return name;
}

std::string& posted() {
    static std::string name;
    return name;
}

}  // namespace

void setShownFile(const std::string& name) {
    shown() = name;
}

const std::string& shownFile() {
    return shown();
}

void setPostedFile(const std::string& name) {
    posted() = name.substr(0, NAME_LENGTH + 1);
}

const std::string& postedFile() {
    return posted();
}

}  // namespace VeskLib::Host
