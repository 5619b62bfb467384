#pragma once

#include "tests/support/ChildProcess.h"

#include <string>
#include <string_view>

namespace VeskLib::Test {

// What a multipart/form-data body is made of; the boundary is "boundary".
inline constexpr const char* MULTIPART_TYPE = "multipart/form-data; boundary=boundary";
inline constexpr const char* LAST_BOUNDARY = "--boundary--\r\n";

// A part with these header lines, each of which ends in a line break.
std::string partOf(std::string_view headerLines, std::string_view content);

std::string fieldPart(const std::string& name, std::string_view value);
std::string filePart(const std::string& name, const std::string& fileName,
                     std::string_view content);

// A POST of `parts` and the last boundary; of `body` as it is.
ChildSetup postParts(const std::string& parts);
ChildSetup postBody(const std::string& body);

}  // namespace VeskLib::Test
