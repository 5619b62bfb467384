#include "platform/host/html/messageLines.h"

#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

#include <string_view>

namespace VeskLib::Host {

std::vector<std::string> splitMessage(const std::string& message) {
    const std::string_view separator = "<br>";
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end = message.find(separator); end != std::string::npos;
         end = message.find(separator, start)) {
        lines.push_back(message.substr(start, end - start));
        start = end + separator.size();
    }
    lines.push_back(message.substr(start));
    return lines;
}

void printMessage(const std::string& message) {
    for (const std::string& line : splitMessage(message)) {
        printText("<p>");
        printEscaped(line);
        printText("</p>");
    }
}

}  // namespace VeskLib::Host
