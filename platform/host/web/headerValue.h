#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The values of headers: a value, and parameters behind it, such as
// "form-data; name=file; filename=\"a.dat\"".

// The words of headers are the same in capitals.
bool equalsIgnoringCase(std::string_view one, std::string_view other);

// `text` without the blanks at its ends.
std::string_view trim(std::string_view text);

// What stands in front of the parameters.
std::string_view mainValue(std::string_view header);

// The media types of forms.
inline constexpr std::string_view URLENCODED_FORM = "application/x-www-form-urlencoded";
inline constexpr std::string_view MULTIPART_FORM = "multipart/form-data";

// Whether a Content-Type header names `type`, whatever parameters follow it.
bool isMediaType(std::string_view contentType, std::string_view type);

// Finds the parameter `name` (lower case), the first when there are more. Quotes around its value
// are taken off. False when there is none. Throws PException (REQUEST_MALFORMED) when a quote of
// any parameter is not closed, or stands where none belongs. `value` is unchanged after both.
bool findParameter(std::string_view header, std::string_view name, std::string& value);

}  // namespace VeskLib::Host
