#include "tests/fuzz/support/formParts.h"

#include <algorithm>

namespace VeskLib::Fuzz {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

std::string makeHeader(const FormPart& part) {
    const std::string file = part.isFile ? "; filename=" + quoted(part.fileName) : std::string();
    return "\r\nContent-Disposition: form-data; name=" + quoted(part.name) + file;
}

std::string makeBoundary(const std::vector<FormPart>& parts) {
    std::size_t number = 0;
    const auto containsBoundary = [&number](const FormPart& part) {
        return part.content.find("again" + std::to_string(number)) != std::string::npos;
    };
    while (std::any_of(parts.begin(), parts.end(), containsBoundary)) {
        ++number;
    }
    return "again" + std::to_string(number);
}

std::string makeBody(const std::vector<FormPart>& parts, const std::string& boundary) {
    std::string body;
    for (const FormPart& part : parts) {
        body += "--" + boundary + makeHeader(part) + "\r\n\r\n" + part.content + "\r\n";
    }
    return body + "--" + boundary + "--\r\n";
}

}  // namespace VeskLib::Fuzz
