#include "platform/host/html/attributes.h"

#include "platform/host/html/escape.h"

#include <iostream>

namespace VeskLib::Host {

void printAttribute(const char* name, std::string_view value) {
    std::cout << ' ' << name << "=\"" << escapeHTML(value) << '"';
}

}  // namespace VeskLib::Host
