#include "tests/support/CGIResponse.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

std::string CGIResponse::header(std::string_view name) const {
    std::string value;
    int count = 0;
    for (const auto& [ownName, ownValue] : headers) {
        if (ownName == name) {
            value = ownValue;
            ++count;
        }
    }
    EXPECT_LE(count, 1) << name;
    return value;
}

CGIResponse parseResponse(const std::string& output, bool headOnly) {
    CGIResponse response;
    std::size_t position = 0;
    while (true) {
        const std::size_t end = output.find("\r\n", position);
        if (end == std::string::npos) {
            ADD_FAILURE() << "no empty line ends the headers: " << output;
            return response;
        }
        const std::string line = output.substr(position, end - position);
        position = end + 2;
        if (line.empty()) {
            break;
        }
        const std::size_t colon = line.find(": ");
        EXPECT_TRUE(colon != std::string::npos && line.find('\n') == std::string::npos)
            << "not a header: " << line;
        response.headers.emplace_back(line.substr(0, colon), line.substr(colon + 2));
    }
    response.body = output.substr(position);
    response.status = response.header("Status");
    if (headOnly) {
        EXPECT_EQ(response.body, "");
    } else {
        EXPECT_EQ(response.header("Content-Length"), std::to_string(response.body.size()));
    }
    return response;
}

}  // namespace VeskLib::Test
