#pragma once

#include <string>

namespace VeskLib::Host {

// Identifies the staged file of this request, so that a restore cannot use a file other than the
// one that its page showed. The name of a file is the SHA-256 of its bytes in lowercase hexadecimal
// digits, or empty if there is no file.

// The hidden field in which the selection form posts the name of the file that its page showed.
inline constexpr const char* STAGED_FILE_FIELD = "staged_file";

// Set and return the staged file that this request has read, for the page that shows it.
void setShownFile(const std::string& name);
const std::string& shownFile();

// Set and return the file that the posted form names. A longer value from the client is truncated
// to one digit more than a name has, so that it matches no file.
void setPostedFile(const std::string& name);
const std::string& postedFile();

}  // namespace VeskLib::Host
