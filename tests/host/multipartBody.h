#pragma once

#include "tests/support/ChildProcess.h"

#include <string>
#include <string_view>

namespace VeskLib::Test {

// The pieces of a multipart/form-data body. The boundary is "boundary".
inline constexpr const char* MULTIPART_TYPE = "multipart/form-data; boundary=boundary";
inline constexpr const char* LAST_BOUNDARY = "--boundary--\r\n";

// Returns a part with these header lines, each of which must end in CR LF.
std::string partOf(std::string_view headerLines, std::string_view content);

std::string fieldPart(const std::string& name, std::string_view value);
std::string filePart(const std::string& name, const std::string& fileName,
                     std::string_view content);

// Return a POST request: of `parts` and the last boundary, or of exactly `body`.
ChildSetup postParts(const std::string& parts);
ChildSetup postBody(const std::string& body);

}  // namespace VeskLib::Test
