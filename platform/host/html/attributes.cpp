#include "platform/host/html/attributes.h"

#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Host {

void printAttribute(const char* name, std::string_view value) {
    printText(" ");
    printText(name);
    printText("=\"");
    printEscaped(value);
    printText("\"");
}

}  // namespace VeskLib::Host
