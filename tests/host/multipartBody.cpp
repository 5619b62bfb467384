#include "tests/host/multipartBody.h"

namespace VeskLib::Test {

std::string partOf(std::string_view headerLines, std::string_view content) {
    std::string part = "--boundary\r\n";
    part += headerLines;
    part += "\r\n";
    part += content;
    part += "\r\n";
    return part;
}

std::string fieldPart(const std::string& name, std::string_view value) {
    return partOf("Content-Disposition: form-data; name=\"" + name + "\"\r\n", value);
}

std::string filePart(const std::string& name, const std::string& fileName,
                     std::string_view content) {
    return partOf("Content-Disposition: form-data; name=\"" + name + "\"; filename=\"" + fileName +
                      "\"\r\nContent-Type: application/octet-stream\r\n",
                  content);
}

ChildSetup postParts(const std::string& parts) {
    return postBody(parts + LAST_BOUNDARY);
}

ChildSetup postBody(const std::string& body) {
    return {.environment = {{"REQUEST_METHOD", "POST"},
                            {"HTTP_HOST", "localhost"},
                            {"CONTENT_TYPE", MULTIPART_TYPE},
                            {"CONTENT_LENGTH", std::to_string(body.size())}},
            .input = body};
}

}  // namespace VeskLib::Test
