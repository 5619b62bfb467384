#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The values of headers consist of a main value and parameters, such as "form-data; name=file;
// filename=\"a.dat\"".

// Compares words of headers, which are not case-sensitive.
bool equalsIgnoringCase(std::string_view one, std::string_view other);

// Returns `text` without spaces and tabs at its ends.
std::string_view trim(std::string_view text);

// Returns the trimmed part before the parameters.
std::string_view mainValue(std::string_view header);

// The media types of forms.
inline constexpr std::string_view URLENCODED_FORM = "application/x-www-form-urlencoded";
inline constexpr std::string_view MULTIPART_FORM = "multipart/form-data";

// Returns true if the Content-Type header names `type`, with any parameters.
bool isMediaType(std::string_view contentType, std::string_view type);

// Finds the parameter `name` (lower case), the first of several, and removes the quotes around its
// value. Returns false if there is none. Throws PException (REQUEST_MALFORMED) if a quote of any
// parameter is unclosed or misplaced. `value` is unchanged in both cases.
bool findParameter(std::string_view header, std::string_view name, std::string& value);

}  // namespace VeskLib::Host
