#include "tests/contract/multipart.h"

namespace VeskLib::Test {

ChildSetup multipartRequest(const std::vector<std::pair<std::string, std::string>>& fields,
                            const std::string& fileName, const std::string& content) {
    const std::string boundary = "----boundary0123456789";
    const std::string start = "--" + boundary + "\r\nContent-Disposition: form-data; name=\"";
    std::string body;
    for (const auto& [name, value] : fields) {
        body += start + name + "\"\r\n\r\n" + value + "\r\n";
    }
    if (!fileName.empty()) {
        body += start + "filename\"; filename=\"" + fileName +
                "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n";
    }
    body += "--" + boundary + "--\r\n";
    return {.environment = {{"REQUEST_METHOD", "POST"},
                            {"CONTENT_TYPE", "multipart/form-data; boundary=" + boundary},
                            {"CONTENT_LENGTH", std::to_string(body.size())}},
            .input = body};
}

}  // namespace VeskLib::Test
